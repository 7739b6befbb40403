// One line of text. Where the place is too narrow it ends in an ellipsis and the pointer shows the whole.
import QtQuick
import Marlune

Text {
    id: root

    textFormat: Text.PlainText
    font: Tokens.type.body
    color: Tokens.color.text
    horizontalAlignment: Text.AlignLeft // also of what is written from right to left
    elide: Text.ElideRight
    maximumLineCount: 1
    Accessible.role: Accessible.StaticText
    Accessible.name: root.text

    HoverHandler {
        enabled: root.truncated
        onHoveredChanged: hovered ? Hints.show(root, root.text) : Hints.hide(root)
    }
}
