// A field for a line of text.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.TextField {
    id: root

    implicitWidth: Math.round(160 * Tokens.type.scale)
    implicitHeight: Tokens.height.regular
    leftPadding: Tokens.space.tight + 1
    rightPadding: leftPadding
    font: Tokens.type.body
    color: Tokens.color.text
    placeholderTextColor: Tokens.color.textMuted
    selectionColor: Tokens.color.accent
    selectedTextColor: Tokens.color.textOnAccent
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: root.placeholderText

    background: Rectangle {
        radius: Tokens.radius.control
        color: Tokens.color.field

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: Tokens.color.hover
            visible: root.hovered && !root.activeFocus
        }
        FocusRing {
            shown: root.activeFocus && (root.focusReason === Qt.TabFocusReason
                || root.focusReason === Qt.BacktabFocusReason || root.focusReason === Qt.ShortcutFocusReason)
        }
    }

    Text {
        x: root.leftPadding
        width: root.width - x - root.rightPadding
        anchors.verticalCenter: parent.verticalCenter
        visible: root.length === 0 && root.preeditText === ""
        text: root.placeholderText
        textFormat: Text.PlainText
        font: root.font
        color: root.placeholderTextColor
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
