// An album's names and facts, and what can be done with all of it.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property AlbumSheetPresenter album

    spacing: 3

    Line {
        objectName: "sheetTitle"
        text: root.album.albumTitle
        font: Tokens.type.of(24, Font.Bold)
        color: Tokens.color.text
        maximumLineCount: 3
        Accessible.role: Accessible.Heading
    }
    Line {
        text: root.album.artist
        font: Tokens.type.title3
        color: Tokens.color.text
        maximumLineCount: 2
    }
    Line {
        Layout.topMargin: Tokens.space.hair
        text: root.album.facts
        font: Tokens.type.caption
    }
    Line {
        text: root.album.format
        font: Tokens.type.caption
    }
    Flow {
        Layout.fillWidth: true
        Layout.topMargin: Tokens.space.regular
        spacing: Tokens.space.tight

        Button {
            objectName: "transferAlbumButton"
            kind: Button.Prominent
            text: L10n.text("Wgraj album")
            enabled: root.album.canTransfer
            onClicked: root.album.transfer()
        }
        Button {
            objectName: "playAlbumButton"
            symbol: root.album.playing ? "pause.fill" : "play.fill"
            text: L10n.text("Odsłuchaj album")
            toolTip: L10n.text(root.album.playing ? "Pauza" : "Odtwórz")
            onClicked: root.album.play()
        }
        Button {
            objectName: "queueAlbumButton"
            text: L10n.text(root.album.queued
                ? root.album.deviceSide ? "Usuń album z playlisty" : "Usuń album z kolejki"
                : root.album.deviceSide ? "Dodaj album do playlisty" : "Dodaj album do kolejki")
            onClicked: root.album.toggleQueue()
        }
        Button {
            objectName: "revealAlbumButton"
            text: L10n.text("Pokaż w Finderze")
            onClicked: root.album.reveal()
        }
    }

    component Line: TextBlock {
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        elide: Text.ElideRight
        visible: text !== ""
    }
}
