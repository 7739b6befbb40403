// A menu about rows of a list. It closes once their numbers may stand for other rows.
import QtQuick
import Marlune

Menu {
    id: root

    required property RowListModel rows
    property int row: -1 ///< that it was opened for
    property Item home: null ///< what it was made in

    /// The row that it was last opened by may be gone by now: it would still be asked for its window.
    function openAtPointer() {
        root.popup(root.home);
    }

    Component.onCompleted: root.home = root.parent

    Connections {
        target: root.rows
        function onRenumbered() {
            root.close();
        }
    }
}
