// What can be done with a track of an album.
import QtQuick
import QtQuick.Templates as T
import Marlune

RowMenu {
    id: root

    required property DiscTrackListModel tracks
    required property bool deviceSide
    property DiscTrackRow shown: null

    /// By the row, or at the pointer.
    function openFor(row: int, shown: DiscTrackRow, byKey: bool) {
        root.row = row;
        root.shown = shown;
        if (byKey) {
            root.popup(shown, Tokens.space.section, shown.height - Tokens.space.hair);
        } else {
            root.openAtPointer();
        }
    }

    rows: root.tracks

    T.Action {
        text: L10n.text(root.shown?.playing ? "Pauza" : "Odtwórz")
        onTriggered: root.tracks.play(root.row)
    }
    T.Action {
        text: root.shown?.queueText ?? ""
        onTriggered: root.tracks.toggle(root.row)
    }
    T.Action {
        text: L10n.text("Pokaż w Finderze")
        onTriggered: root.tracks.reveal(root.row)
    }
}
