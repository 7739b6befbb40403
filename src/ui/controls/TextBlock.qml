// Text over as many lines as it needs. Where there is room for fewer it ends in an ellipsis and the pointer shows the
// whole.
import QtQuick
import Marlune

Text {
    id: root

    textFormat: Text.PlainText
    font: Tokens.type.subheadline
    color: Tokens.color.textMuted
    horizontalAlignment: Text.AlignLeft // also of what is written from right to left
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: root.text

    HoverHandler {
        enabled: root.truncated
        onHoveredChanged: hovered ? Hints.show(root, root.text) : Hints.hide(root)
    }
}
