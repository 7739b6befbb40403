// The collection of the computer or of the device, with its filters. Files and folders can be dropped anywhere on it.
import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property LibraryPresenter library

    readonly property int lowestContent: Math.round(240 * Tokens.type.scale)

    PageColumn {
        anchors.fill: parent
        around: 24
        spacing: 15

        RowLayout {
            Layout.fillWidth: true
            spacing: Tokens.space.wide

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2

                TextLine {
                    Layout.fillWidth: true
                    text: L10n.text("Twoja muzyka")
                    font: Tokens.type.of(28, Font.Bold)
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: Tokens.type.title.pixelSize
                    Accessible.role: Accessible.Heading
                }
                TextLine {
                    objectName: "countsText"
                    Layout.fillWidth: true
                    text: root.library.counts
                    font: Tokens.type.caption
                    color: Tokens.color.textMuted
                }
            }
            Button {
                objectName: "addMusicButton"
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: 2
                kind: Button.Prominent
                text: L10n.text("Dodaj muzykę…")
                symbol: "plus"
                enabled: !root.model.busy
                onClicked: root.model.importMusic()
            }
        }
        LibraryFilters {
            Layout.fillWidth: true
            model: root.model
            library: root.library
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: root.lowestContent

            AlbumGrid {
                anchors.fill: parent
                anchors.leftMargin: -around // covers are in line with what is above them
                anchors.rightMargin: -around
                anchors.topMargin: -around
                visible: !root.library.nothingListed
                albums: root.library.albums
                tileSize: root.model.tileSize
                deviceSide: root.model.libraryOnDevice
                busy: root.model.busy
            }
            EmptyState {
                objectName: "emptyState"
                anchors.fill: parent
                // Not while the first music is being read: what is missing is on its way.
                visible: root.library.nothingListed && !(root.library.withoutMusic && root.model.busy)
                symbol: "square.stack"
                symbolSide: 42
                title: L10n.text(root.library.withoutMusic ? "Dodaj muzykę lub odczytaj iPoda"
                                                           : "Brak utworów dla tych filtrów")
                titleFont: Tokens.type.headline
                detail: L10n.text("Kolejkę i playlistę wybierasz osobnymi przyciskami.")
                detailFont: Tokens.type.caption
            }
        }
        TextBlock {
            objectName: "hiResNote"
            Layout.fillWidth: true
            visible: root.library.highResolutionListed
            text: L10n.text(
                "Hi-Res opisuje plik źródłowy. Odtwarzanie i wyjście audio zależą od sprzętu i Rockbox.")
            font: Tokens.type.caption2
        }
    }

    DropArea {
        id: drop
        anchors.fill: parent
        keys: ["text/uri-list"]
        onEntered: event => event.accepted = !root.model.busy
        onDropped: event => {
            event.accept(Qt.CopyAction);
            root.library.importDropped(event.urls);
        }
    }
    DropHighlight {
        anchors.fill: parent
        anchors.margins: Tokens.space.tight
        shown: drop.containsDrag
    }
}
