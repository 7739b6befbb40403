// An entry of a menu.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.MenuItem {
    id: root

    property bool offered: true ///< without that it takes no room, and no key leads to it

    visible: root.offered
    activeFocusOnTab: root.offered // what a menu goes by
    height: root.offered ? root.implicitHeight : 0
    implicitWidth: Math.max(200, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Tokens.height.regular
    horizontalPadding: Tokens.space.regular
    font: Tokens.type.subheadline
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: label.text

    contentItem: Item {
        implicitWidth: label.x + label.implicitWidth
            + (keys.text === "" ? 0 : keys.implicitWidth + Tokens.space.section)

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.checked
            symbol: "checkmark"
            color: label.color
        }
        TextLine {
            id: label
            x: root.checkable ? Tokens.height.symbol + Tokens.space.tight : 0
            width: parent.width - x - (keys.text === "" ? 0 : keys.width)
            anchors.verticalCenter: parent.verticalCenter
            text: root.text.replace("&", "")
            font: root.font
            color: root.highlighted ? Tokens.color.textOnAccent : Tokens.color.text
            Accessible.ignored: true
        }
        Text {
            id: keys
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: root.action?.shortcut ?? ""
            textFormat: Text.PlainText
            font: Tokens.type.caption
            color: root.highlighted ? Tokens.color.textOnAccent : Tokens.color.textMuted
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control - 2
        color: root.highlighted ? Tokens.color.accent : "transparent"
    }
}
