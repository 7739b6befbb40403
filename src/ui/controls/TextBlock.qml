// Text over as many lines as it needs.
import QtQuick
import Marlune

Text {
    textFormat: Text.PlainText
    font: Tokens.type.subheadline
    color: Tokens.color.textMuted
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
