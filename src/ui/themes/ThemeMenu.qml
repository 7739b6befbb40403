// What else can be done with the theme under the pointer.
import QtQuick
import QtQuick.Templates as T
import Marlune

RowMenu {
    id: root

    required property ThemesPresenter themes

    /// By the tile, or without one at the pointer.
    function openFor(row: int, tile: Item) {
        root.row = row;
        if (tile) {
            root.popup(tile, Tokens.space.wide, Tokens.space.wide);
        } else {
            root.openAtPointer();
        }
    }

    rows: root.themes.themes

    T.Action {
        text: L10n.text("Szczegóły i podgląd")
        onTriggered: root.themes.open(root.row)
    }
    T.Action {
        text: L10n.text("Dodaj własny zrzut…")
        onTriggered: root.themes.choosePicture(root.row)
    }
    T.Action {
        text: L10n.text("Plik w Finderze")
        onTriggered: root.themes.reveal(root.row)
    }
}
