// What else can be done with the album under the pointer, or with all that are selected.
import QtQuick
import QtQuick.Templates as T
import Marlune

RowMenu {
    id: root

    required property AlbumListModel albums
    required property bool deviceSide
    required property bool busy
    property bool playing: false ///< the album of that row
    property bool several: false ///< it is about others too
    property bool chosen: false ///< all that it is about are queued or selected

    readonly property string queueText: root.deviceSide ? root.chosen ? "Usuń z playlisty" : "Dodaj do playlisty"
                                                        : root.chosen ? "Usuń z kolejki" : "Dodaj do kolejki"

    /// By the card, or at the pointer.
    function openFor(card: AlbumCard, byCard: bool) {
        if (!card) {
            return;
        }
        root.row = card.index;
        root.playing = card.playing;
        root.several = root.albums.isOneOfSeveral(card.index);
        root.chosen = root.albums.selectedAreChosen(card.index);
        if (byCard) {
            root.popup(card, Tokens.space.wide, Tokens.space.wide);
        } else {
            root.openAtPointer();
        }
    }

    rows: root.albums

    MenuItem {
        offered: !root.several
        text: L10n.text("Otwórz album")
        onTriggered: root.albums.activate(root.row)
    }
    MenuItem {
        offered: !root.several
        text: L10n.text(root.playing ? "Pauza" : "Odtwórz")
        onTriggered: root.albums.play(root.row)
    }
    T.Action {
        text: L10n.text(root.queueText)
        onTriggered: root.albums.toggleSelected(root.row)
    }
    MenuItem {
        offered: !root.several
        enabled: !root.busy
        text: L10n.text("Dodaj / zmień okładkę…")
        onTriggered: root.albums.chooseCover(root.row)
    }
    MenuItem {
        offered: !root.several
        text: L10n.text("Znajdź w sieci…")
        onTriggered: root.albums.lookUpCover(root.row)
    }
    T.Action {
        text: L10n.text("Pokaż pliki w Finderze")
        onTriggered: root.albums.revealSelected(root.row)
    }
    MenuItem {
        offered: !root.several && !root.deviceSide
        enabled: !root.busy
        text: L10n.text("Usuń z biblioteki Marlune")
        onTriggered: root.albums.forget(root.row)
    }
}
