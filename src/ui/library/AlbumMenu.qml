// What else can be done with the album under the pointer.
import QtQuick
import QtQuick.Templates as T
import Marlune

Menu {
    id: root

    required property AlbumListModel albums
    required property bool deviceSide
    required property bool busy
    property int row: -1
    property bool playing: false ///< the album of that row

    /// By the card, or without one at the pointer.
    function openFor(row: int, playing: bool, card: Item) {
        root.row = row;
        root.playing = playing;
        if (card) {
            root.popup(card, Tokens.space.wide, Tokens.space.wide);
        } else {
            root.popup();
        }
    }

    T.Action {
        text: L10n.text("Otwórz album")
        onTriggered: root.albums.open(root.row)
    }
    T.Action {
        text: L10n.text(root.playing ? "Pauza" : "Odtwórz")
        onTriggered: root.albums.play(root.row)
    }
    MenuItem {
        enabled: !root.busy
        text: L10n.text("Dodaj / zmień okładkę…")
        onTriggered: root.albums.chooseCover(root.row)
    }
    T.Action {
        text: L10n.text("Znajdź w sieci…")
        onTriggered: root.albums.lookUpCover(root.row)
    }
    T.Action {
        text: L10n.text("Pokaż pliki w Finderze")
        onTriggered: root.albums.reveal(root.row)
    }
    MenuItem {
        visible: !root.deviceSide
        height: visible ? implicitHeight : 0
        enabled: !root.busy
        text: L10n.text("Usuń z biblioteki Marlune")
        onTriggered: root.albums.forget(root.row)
    }
}
