// A menu about rows of a list. It closes once their numbers may stand for other rows.
import QtQuick
import Marlune

Menu {
    id: root

    required property RowListModel rows
    property int row: -1 ///< that it was opened for

    Connections {
        target: root.rows
        function onRenumbered() {
            root.close();
        }
    }
}
