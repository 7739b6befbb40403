// What keys do in the lists of the library page: they lead to other rows, select, queue, open and play. And what hangs
// at the pointer when rows are dragged.
import QtQuick
import Marlune

QtObject {
    id: root

    required property MusicListModel list

    signal menuWanted

    /// How far keys lead where rows lie below each other.
    function stepsInColumn(rowsOfAPage: int, count: int): var {
        return {
            [Qt.Key_Up]: -1,
            [Qt.Key_Down]: 1,
            [Qt.Key_PageUp]: -rowsOfAPage,
            [Qt.Key_PageDown]: rowsOfAPage,
            [Qt.Key_Home]: -count,
            [Qt.Key_End]: count
        };
    }
    /// The focus has come to a row's item, or left it. Where the view itself has gone there, as rows were put in or taken
    /// out, it is the list that says which row is the current one.
    function noteFocus(item: Item, row: int, currentOfView: int) {
        if (item.activeFocus && row >= 0 && row !== currentOfView) {
            root.list.makeCurrent(row);
        }
    }
    /// Drags what an action on the row is about.
    function drag(row: int) {
        root.list.drag(row, Tokens.color.accent, Tokens.color.textOnAccent, Tokens.type.subheadlineStrong);
    }
    /// Whether the key of `event`, pressed on a row, led anywhere. `steps` holds how far a key leads, `others` the
    /// list's own keys.
    function act(row: int, event: var, steps: var, others: var): bool {
        const list = root.list;
        const control = event.modifiers & Qt.ControlModifier;
        const open = () => control ? list.play(row) : list.activate(row);
        const by = steps[event.key];
        const action = by !== undefined ? () => list.walk(row + by, event.modifiers) : others[event.key] ?? {
            [Qt.Key_Space]: list.typing() && !control ? null
                : () => event.isAutoRepeat ? null : control ? list.toggleMark(row) : list.toggleSelected(row),
            [Qt.Key_Return]: open,
            [Qt.Key_Enter]: open,
            [Qt.Key_Escape]: list.selectedCount > 0 ? () => list.clearSelection() : null,
            [Qt.Key_A]: control ? () => list.selectAll() : null,
            [Qt.Key_Menu]: () => root.menuWanted(),
            [Qt.Key_F10]: event.modifiers & Qt.ShiftModifier ? () => root.menuWanted() : null
        }[event.key];
        action?.();
        return Boolean(action) || list.type(event.text, event.modifiers);
    }
}
