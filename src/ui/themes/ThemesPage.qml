// The themes that are on the device, and the import of another one. A package can be dropped anywhere on the page.
import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property ThemesPresenter themes

    PageColumn {
        anchors.fill: parent
        around: 26
        spacing: 16

        RowLayout {
            Layout.fillWidth: true
            spacing: Tokens.space.wide

            TextLine {
                Layout.fillWidth: true
                text: L10n.text("Motywy")
                font: Tokens.type.of(29, Font.Bold)
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: Tokens.type.title.pixelSize
                Accessible.role: Accessible.Heading
            }
            Button {
                objectName: "importThemeButton"
                kind: Button.Prominent
                symbol: "plus"
                text: L10n.text("Importuj ZIP…")
                enabled: root.themes.canImport
                onClicked: root.model.installTheme()
            }
        }
        Flow {
            Layout.fillWidth: true
            spacing: Tokens.space.tight

            Button {
                objectName: "fetchPreviewsButton"
                enabled: root.themes.themes.count > 0
                text: L10n.text("Pobierz podglądy z Rockbox")
                onClicked: root.model.fetchThemePreviews()
            }
            Button {
                objectName: "catalogueLink"
                kind: Button.Borderless
                text: L10n.text("Katalog motywów ↗")
                onClicked: root.themes.openCatalogue()
            }
        }
        TextBlock {
            objectName: "themesNote"
            Layout.fillWidth: true
            text: root.themes.note
            font: Tokens.type.caption
        }
        TextBlock {
            objectName: "themesWithoutDevice"
            Layout.fillWidth: true
            visible: !root.themes.hasDevice
            text: L10n.text("Podłącz urządzenie, aby zobaczyć zainstalowane motywy.")
            font: Tokens.type.caption
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: Math.round(240 * Tokens.type.scale)

            ThemeGallery {
                anchors.fill: parent
                visible: root.themes.hasDevice && root.themes.themes.count > 0
                themes: root.themes
            }
            EmptyState {
                objectName: "emptyState"
                anchors.fill: parent
                visible: root.themes.hasDevice && root.themes.themes.count === 0
                symbol: "paintbrush"
                title: L10n.text("Na tym urządzeniu nie ma jeszcze motywów")
                detail: L10n.text("Zaimportuj paczkę ZIP z katalogu motywów albo upuść ją tutaj.")
            }
        }
    }

    DropArea {
        id: drop

        property string words ///< what letting go would do
        property bool installs

        anchors.fill: parent
        keys: ["text/uri-list"]
        onEntered: event => {
            words = root.themes.dropTitle(event.urls);
            installs = root.themes.isPackage(event.urls);
            event.accepted = true;
        }
        onDropped: event => {
            event.accepted = root.themes.isPackage(event.urls);
            root.themes.importDropped(event.urls);
        }
    }
    DropHighlight {
        anchors.fill: parent
        anchors.margins: Tokens.space.tight
        shown: drop.containsDrag
        title: drop.words
        detail: drop.installs ? L10n.text("Przed instalacją powstaje kopia ustawień.") : ""
    }
}
