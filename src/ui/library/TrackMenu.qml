// What can be done with the track under the pointer, or with all that are selected.
import QtQuick
import QtQuick.Templates as T
import Marlune

RowMenu {
    id: root

    required property TrackListModel tracks
    required property bool deviceSide
    property bool playing: false ///< the track of that row
    property bool chosen: false ///< all that the menu is about

    readonly property string queueText: root.deviceSide ? root.chosen ? "Usuń z playlisty" : "Dodaj do playlisty"
                                                        : root.chosen ? "Usuń z kolejki" : "Dodaj do kolejki"

    /// By the row, or without one at the pointer.
    function openFor(row: int, playing: bool, item: Item) {
        root.row = row;
        root.playing = playing;
        root.chosen = root.tracks.selectedAreChosen(row);
        if (item) {
            root.popup(item, Tokens.space.section, item.height);
        } else {
            root.openAtPointer();
        }
    }

    rows: root.tracks

    T.Action {
        text: L10n.text("Otwórz album")
        onTriggered: root.tracks.activate(root.row)
    }
    T.Action {
        text: L10n.text(root.playing ? "Pauza" : "Odtwórz")
        onTriggered: root.tracks.play(root.row)
    }
    T.Action {
        text: L10n.text(root.queueText)
        onTriggered: root.tracks.toggleSelected(root.row)
    }
    T.Action {
        text: L10n.text("Pokaż w Finderze")
        onTriggered: root.tracks.revealSelected(root.row)
    }
}
