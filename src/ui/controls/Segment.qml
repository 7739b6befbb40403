// One value of a segmented picker.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.AbstractButton {
    id: root

    readonly property real textWidth: label.implicitWidth

    checkable: false
    focusPolicy: root.checked ? Qt.StrongFocus : Qt.ClickFocus
    font: root.checked ? Tokens.type.subheadlineStrong : Tokens.type.subheadline
    Accessible.role: Accessible.RadioButton
    Accessible.name: root.text
    Accessible.checkable: true
    Accessible.checked: root.checked

    contentItem: Text {
        id: label
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: Tokens.color.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.margins: 2
            radius: Tokens.radius.control - 2
            color: root.checked ? Tokens.color.raised : root.down ? Tokens.color.pressed : Tokens.color.hover
            border.width: root.checked ? 1 : 0
            border.color: Tokens.color.line
            visible: root.checked || root.hovered
        }
        FocusRing {
            anchors.margins: -1
            shown: root.visualFocus
        }
    }
}
