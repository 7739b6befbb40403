// One value of a segmented picker. A radio button to those who do not see it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.RadioButton {
    id: root

    readonly property real textWidth: label.implicitWidth

    // What has the focus has to stay a stop.
    focusPolicy: root.checked || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    font: root.checked ? Tokens.type.subheadlineStrong : Tokens.type.subheadline
    Accessible.name: root.text
    onHoveredChanged: root.hovered ? Hints.show(root, label.truncated ? root.text : "") : Hints.hide(root)

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
