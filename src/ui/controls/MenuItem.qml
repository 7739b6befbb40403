// An entry of a menu or of a list of choices.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.MenuItem {
    id: root

    property bool markable: false ///< room for a check mark
    property bool marked: false

    implicitWidth: Math.max(200, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Tokens.height.regular
    leftPadding: root.markable ? Tokens.space.tight + Tokens.height.symbol + Tokens.space.hair : Tokens.space.regular
    rightPadding: Tokens.space.regular
    font: Tokens.type.subheadline
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: label.text

    contentItem: Item {
        implicitWidth: label.implicitWidth + (keys.text === "" ? 0 : keys.implicitWidth + Tokens.space.section)

        TextLine {
            id: label
            width: parent.width - (keys.text === "" ? 0 : keys.width)
            anchors.verticalCenter: parent.verticalCenter
            text: root.text.replace("&", "")
            font: root.font
            color: root.highlighted ? Tokens.color.textOnAccent : Tokens.color.text
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

        Icon {
            x: Tokens.space.tight
            anchors.verticalCenter: parent.verticalCenter
            visible: root.marked
            symbol: "checkmark"
            color: root.highlighted ? Tokens.color.textOnAccent : Tokens.color.text
        }
    }
}
