// The program's icon, name and motto.
import QtQuick
import Marlune

Item {
    id: root

    readonly property int iconSide: 40

    implicitWidth: words.x + name.implicitWidth
    implicitHeight: Math.max(root.iconSide + 2, words.height)

    Image {
        y: 2
        width: root.iconSide
        height: root.iconSide
        source: "qrc:/icons/marlune.svg"
        sourceSize.width: root.iconSide
        sourceSize.height: root.iconSide
        Accessible.ignored: true
    }
    Column {
        id: words
        x: root.iconSide + 12
        width: root.width - x

        TextLine {
            id: name
            width: parent.width
            text: L10n.text("Marlune")
            font: Tokens.type.of(23, Font.Bold)
        }
        TextBlock {
            width: Math.min(parent.width, 92 * Tokens.type.scale) // two even lines
            text: L10n.text("Muzyka. Motywy. Twój iPod.")
            font: Tokens.type.of(10, Font.Normal)
        }
    }
}
