// A symbol in one colour, by its name in the table of symbols.
import QtQuick
import Marlune

Image {
    id: root

    required property string symbol
    property color color: Tokens.color.text
    property int side: Tokens.height.symbol

    width: root.side
    height: root.side
    sourceSize.width: root.side
    sourceSize.height: root.side
    source: root.symbol === "" ? "" : "image://symbol/" + root.symbol + "/" + String(root.color).substring(1)
    Accessible.ignored: true
}
