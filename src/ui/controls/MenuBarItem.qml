// The title of a menu in the menu bar. The letter that opens it is underlined while the key for that is held down.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.MenuBarItem {
    id: root

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Tokens.height.small
    horizontalPadding: Tokens.space.tight + 2
    font: Tokens.type.subheadline
    Accessible.name: root.text.replace("&", "")
    // For the bar, a menu closed by a key below the pointer is still open: the next key for it would close it again.
    onHoveredChanged: if (!root.hovered && root.highlighted && !root.menu.visible) root.menu.aboutToHide()

    contentItem: Text {
        text: FocusGuide.lettersShown ? root.text.replace(/&(.)/, "<u>$1</u>") : root.text.replace("&", "")
        textFormat: Text.StyledText
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
