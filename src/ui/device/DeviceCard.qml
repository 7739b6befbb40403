// A card of the device's page: a symbol with a title, and below them what the card is about.
import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    required property string symbol
    required property string title
    default property alias content: stack.data

    implicitWidth: 200
    implicitHeight: stack.implicitHeight + 40
    radius: Tokens.radius.card
    color: Tokens.color.card
    border.color: Tokens.color.line

    ColumnLayout {
        id: stack
        x: 20
        y: 20
        width: root.width - 40
        height: root.height - 40
        spacing: Tokens.space.tight

        RowLayout {
            spacing: Tokens.space.tight

            Icon {
                symbol: root.symbol
                color: Tokens.color.accent
                side: Tokens.height.symbol + 2
            }
            TextLine {
                Layout.fillWidth: true
                text: root.title
                font: Tokens.type.headline
                Accessible.role: Accessible.Heading
            }
        }
    }
}
