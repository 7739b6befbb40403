// One figure with its symbol and what it is of.
import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    required property string symbol
    required property string value
    required property string label

    implicitWidth: 120
    implicitHeight: stack.implicitHeight + 40
    radius: Tokens.radius.card
    color: Tokens.color.card
    border.color: Tokens.color.line
    Accessible.role: Accessible.StaticText
    Accessible.name: root.label + ": " + root.value

    ColumnLayout {
        id: stack
        x: 20
        y: 20
        width: root.width - 40
        spacing: Tokens.space.hair

        Icon {
            Layout.bottomMargin: Tokens.space.hair
            symbol: root.symbol
            color: Tokens.color.accent
            side: Tokens.height.symbol + 6
        }
        TextLine {
            Layout.fillWidth: true
            text: root.value
            font: Tokens.type.title2
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Tokens.type.subheadline.pixelSize
            Accessible.ignored: true
        }
        TextBlock {
            Layout.fillWidth: true
            text: root.label
            font: Tokens.type.caption
            Accessible.ignored: true
        }
    }
}
