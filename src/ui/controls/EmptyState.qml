// What an empty place is for: a large symbol, a title and a sentence, centred in the room that there is.
import QtQuick
import Marlune

Item {
    id: root

    required property string symbol
    required property string title
    property string detail
    property int symbolSide: 47
    property font titleFont: Tokens.type.of(19, Font.DemiBold)
    property font detailFont: Tokens.type.subheadline

    readonly property int widest: 380

    implicitHeight: stack.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: root.title + ". " + root.detail

    Column {
        id: stack
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Tokens.space.group, root.widest)
        spacing: Tokens.space.regular

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: root.symbol
            color: Tokens.color.accent
            opacity: 0.7
            side: root.symbolSide
        }
        Text {
            width: parent.width
            text: root.title
            textFormat: Text.PlainText
            font: root.titleFont
            color: Tokens.color.text
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
        Text {
            width: parent.width
            visible: text !== ""
            text: root.detail
            textFormat: Text.PlainText
            font: root.detailFont
            color: Tokens.color.textMuted
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            lineHeight: 1.2
            Accessible.ignored: true
        }
    }
}
