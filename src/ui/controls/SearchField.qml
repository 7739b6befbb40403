// A field to search in. Escape, or the cross at its end, empties it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.TextField {
    id: root

    implicitWidth: Math.round(160 * Tokens.type.scale)
    implicitHeight: Math.max(Tokens.height.regular, contentHeight + 18)
    leftPadding: 9 + Tokens.height.symbol + Tokens.space.tight
    rightPadding: clear.width + Tokens.space.hair
    font: Tokens.type.body
    color: Tokens.color.text
    placeholderTextColor: Tokens.color.textMuted
    selectionColor: Tokens.color.accent
    selectedTextColor: Tokens.color.textOnAccent
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: root.placeholderText
    Keys.onEscapePressed: event => {
        event.accepted = root.text !== "";
        root.clear();
    }

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

    Icon {
        x: 9
        anchors.verticalCenter: parent.verticalCenter
        symbol: "magnifyingglass"
        color: Tokens.color.textMuted
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
    Button {
        id: clear
        anchors.right: parent.right
        anchors.rightMargin: Tokens.space.hair
        anchors.verticalCenter: parent.verticalCenter
        visible: root.length > 0
        kind: Button.Borderless
        measure: Button.Small
        focusPolicy: Qt.NoFocus
        symbol: "xmark.circle.fill"
        tint: Tokens.color.textMuted
        toolTip: L10n.text("Wyczyść")
        onClicked: {
            root.clear();
            root.forceActiveFocus();
        }
    }
}
