// The heading of a page: its title, and what it is for.
import QtQuick
import Marlune

Column {
    id: root

    required property string title
    required property string subtitle

    spacing: 2

    TextLine {
        width: parent.width
        text: L10n.text(root.title)
        font: Tokens.type.of(29, Font.Bold)
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: Tokens.type.title.pixelSize
        Accessible.role: Accessible.Heading
    }
    TextBlock {
        width: parent.width
        text: L10n.text(root.subtitle)
    }
}
