// The title of a menu in the menu bar.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.MenuBarItem {
    id: root

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Tokens.height.small
    horizontalPadding: Tokens.space.tight + 2
    font: Tokens.type.subheadline
    Accessible.name: label.text

    contentItem: Text {
        id: label
        text: root.text.replace("&", "")
        textFormat: Text.PlainText
        font: root.font
        color: Tokens.color.text
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: Tokens.radius.control - 2
        color: root.down || root.highlighted ? Tokens.color.pressed : "transparent"

        FocusRing {
            shown: root.visualFocus
            around: parent.radius
        }
    }
}
