// What can be done with the folder or file under the pointer, or with all that are selected.
import QtQuick
import QtQuick.Templates as T
import Marlune

RowMenu {
    id: root

    required property FolderTreeModel folders
    required property bool deviceSide
    property bool isFolder: false
    property bool open: false
    property bool playing: false
    property bool chosen: false ///< all that the menu is about
    property bool canReveal: false

    readonly property string queueText: root.deviceSide ? root.chosen ? "Usuń z playlisty" : "Dodaj do playlisty"
                                                        : root.chosen ? "Usuń z kolejki" : "Dodaj do kolejki"

    /// By the row, or at the pointer.
    function openFor(item: FolderTreeRow, atRow: bool) {
        root.row = item.index;
        root.isFolder = item.isFolder;
        root.open = item.open;
        root.playing = item.playing;
        root.chosen = root.folders.selectedAreChosen(item.index);
        root.canReveal = root.folders.canReveal(item.index);
        if (atRow) {
            root.popup(item, item.indent + Tokens.space.section, item.height);
        } else {
            root.openAtPointer();
        }
    }

    rows: root.folders

    MenuItem {
        offered: root.isFolder
        text: L10n.text(root.open ? "Zwiń" : "Rozwiń")
        onTriggered: root.folders.toggleOpen(root.row)
    }
    MenuItem {
        offered: root.isFolder
        text: L10n.text("Rozwiń ze wszystkim w środku")
        onTriggered: root.folders.openBelow(root.row)
    }
    T.Action {
        text: L10n.text(root.playing ? "Pauza" : "Odtwórz")
        onTriggered: root.folders.play(root.row)
    }
    T.Action {
        text: L10n.text(root.queueText)
        onTriggered: root.folders.toggleSelected(root.row)
    }
    T.Action {
        text: L10n.text("Pokaż w Finderze")
        enabled: root.canReveal
        onTriggered: root.folders.revealSelected(root.row)
    }
    MenuItem {
        offered: !root.isFolder
        text: L10n.text("Album")
        onTriggered: root.folders.openAlbum(root.row)
    }
}
