// An entry of a list of choices, with room for a check mark.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    property bool marked: false

    readonly property color ink: root.highlighted ? Tokens.color.textOnAccent : Tokens.color.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Tokens.height.regular
    leftPadding: Tokens.space.tight + Tokens.height.symbol + Tokens.space.hair
    rightPadding: Tokens.space.regular
    font: Tokens.type.subheadline
    Accessible.name: root.text

    contentItem: TextLine {
        text: root.text
        font: root.font
        color: root.ink
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Tokens.radius.control - 2
        color: root.highlighted ? Tokens.color.accent : "transparent"

        Icon {
            x: Tokens.space.tight
            anchors.verticalCenter: parent.verticalCenter
            visible: root.marked
            symbol: "checkmark"
            color: root.ink
        }
    }
}
