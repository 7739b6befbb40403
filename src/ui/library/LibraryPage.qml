// The collection of the computer or of the device, with its filters. Files and folders can be dropped anywhere on it.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property LibraryPresenter library

    readonly property int lowestContent: Math.round(240 * Tokens.type.scale)

    /// Gives the keyboard to what is listed.
    function focusContent() {
        const place = albums.visible ? albums : tracks.visible ? tracks : folders;
        place.made?.takeFocus();
    }

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
            onContentWanted: root.focusContent()
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: root.lowestContent

            Item {
                id: views
                anchors.fill: parent
                visible: !root.library.nothingListed

                LazyPlace {
                    id: albums
                    shown: root.library.albumsShown

                    AlbumGrid {
                        anchors.fill: parent
                        anchors.leftMargin: -around // covers are in line with what is above them
                        anchors.rightMargin: -around
                        anchors.topMargin: -around
                        albums: root.library.albums
                        tileSize: root.model.tileSize
                        deviceSide: root.model.libraryOnDevice
                        busy: root.model.busy
                    }
                }
                LazyPlace {
                    id: tracks
                    shown: root.library.tracksShown

                    TrackListView {
                        anchors.fill: parent
                        tracks: root.library.tracks
                        deviceSide: root.model.libraryOnDevice
                    }
                }
                LazyPlace {
                    id: folders
                    shown: root.library.foldersShown

                    FolderTreeView {
                        anchors.fill: parent
                        folders: root.library.folders
                        deviceSide: root.model.libraryOnDevice
                    }
                }
            }
            EmptyState {
                readonly property bool awaits: root.library.withoutMusic && root.model.readingMusic

                objectName: "emptyState"
                anchors.fill: parent
                visible: root.library.nothingListed
                symbol: "square.stack"
                symbolSide: 42
                title: L10n.text(awaits ? "Odczytuję albumy…"
                    : root.library.withoutMusic ? "Dodaj muzykę lub odczytaj iPoda" : "Brak utworów dla tych filtrów")
                titleFont: Tokens.type.headline
                detail: L10n.text(awaits ? "" :
                    "Kliknięcie albumu otwiera listę utworów.\nKolejkę i playlistę wybierasz osobnymi przyciskami.")
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

        property bool imports

        anchors.fill: parent
        keys: ["text/uri-list"]
        onEntered: event => {
            imports = !root.model.busy;
            event.accepted = root.library.takesDrop(event.formats);
        }
        onDropped: event => {
            event.accept(imports ? Qt.CopyAction : Qt.IgnoreAction);
            root.library.importDropped(event.urls);
        }
    }
    DropHighlight {
        anchors.fill: parent
        anchors.margins: Tokens.space.tight
        shown: drop.containsDrag
        title: L10n.text(drop.imports ? "Upuść, aby dodać do biblioteki" : "Najpierw poczekaj na koniec bieżącej pracy")
        detail: drop.imports ? L10n.text("Pliki i foldery z muzyką trafią też do kolejki.") : ""
    }
}
