// The theme that the device is set to.
import QtQuick
import QtQuick.Layouts
import Marlune

DeviceCard {
    id: root

    required property DevicePresenter device

    readonly property bool pictured: String(root.device.themePicture) !== ""

    symbol: "paintpalette"
    title: L10n.text("Twój styl")

    RowLayout {
        Layout.fillWidth: true
        spacing: Tokens.space.wide

        ThemeImage {
            Layout.preferredWidth: 128
            Layout.preferredHeight: 96
            Layout.alignment: Qt.AlignTop
            visible: root.pictured
            url: root.device.themePicture
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            spacing: Tokens.space.hair

            TextLine {
                objectName: "styleName"
                Layout.fillWidth: true
                text: root.device.themeName
                font: Tokens.type.of(16, Font.Bold)
            }
            TextBlock {
                Layout.fillWidth: true
                text: L10n.text("Motyw zapisany w konfiguracji Rockbox")
                font: Tokens.type.caption
            }
            TextBlock {
                Layout.fillWidth: true
                text: L10n.text(root.pictured ? "Podgląd motywu, bez odczytu ekranu na żywo"
                    : "Brak podglądu — dodaj zrzut w Motywach")
                font: Tokens.type.caption
            }
        }
    }
    Item {
        Layout.fillHeight: true
    }
    Button {
        objectName: "openGalleryButton"
        text: L10n.text("Otwórz galerię motywów")
        onClicked: root.device.openThemes()
    }
}
