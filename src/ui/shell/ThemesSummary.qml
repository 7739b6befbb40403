// How many themes the connected device has, and the way to their page.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property string count

    signal browse

    spacing: 5

    RowLayout {
        spacing: Tokens.space.hair + 2

        Icon {
            symbol: "paintbrush"
            color: Tokens.color.text
            side: Tokens.height.symbol
        }
        TextLine {
            Layout.fillWidth: true
            text: L10n.text("Motywy Rockbox")
            font: Tokens.type.of(13, Font.DemiBold)
            Accessible.role: Accessible.Heading
        }
    }
    TextBlock {
        objectName: "themeCount"
        Layout.fillWidth: true
        text: root.count
    }
    Button {
        objectName: "browseThemesButton"
        Layout.topMargin: 3
        text: L10n.text("Przeglądaj motywy")
        onClicked: root.browse()
    }
}
