// The folders that the listed files lie in, as an outline of which only the visible rows are alive. One stop for the
// Tab key: Up and Down, Page Up and Down, Home and End move, Right opens a folder and goes into it, Left closes it or
// goes to the one around it, * opens all below. Letters lead to a name; Space queues what is selected, Return opens the
// album or the folder, with Control it plays, and Control+Space selects.
//
// A ListView of the rows that are seen: Qt's TreeView of 6.4 has no current row for the keyboard and none for a reader.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

FocusScope {
    id: root

    required property FolderTreeModel folders
    required property bool deviceSide

    readonly property int rowHeight: Tokens.height.small + Tokens.space.tight
    readonly property int rowsOfAPage: Math.max(1, Math.floor(view.height / root.rowHeight) - 1)

    function takeFocus() {
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }
    function openMenu(row: FolderTreeRow, atRow: bool) {
        if (row) {
            menu.openFor(row, atRow);
        }
    }
    function showFrom(row: real) {
        view.positionViewAtIndex(Math.floor(row), ListView.Beginning);
        view.contentY = Math.min(view.contentY + (row - Math.floor(row)) * root.rowHeight,
            Math.max(view.originY, view.originY + view.contentHeight - view.height));
    }
    ListKeys {
        id: keys
        list: root.folders
        onMenuWanted: root.openMenu(view.currentItem as FolderTreeRow, true)
    }
    FolderTreeMenu {
        id: menu
        folders: root.folders
        deviceSide: root.deviceSide
    }
    Connections {
        target: root.folders
        function onPlaced(topRow: real) {
            root.showFrom(topRow);
        }
    }
    ListView {
        id: view
        objectName: "folderTree"
        anchors.fill: parent
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false // what has the focus is followed
        model: root.folders
        currentIndex: Math.max(0, root.folders.currentRow) // without a current row the first one is the stop
        Accessible.role: Accessible.List
        Accessible.name: L10n.text("Foldery")
        onContentYChanged: root.folders.setTopRow((view.contentY - view.originY) / root.rowHeight)
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width
            height: root.height
        }
        delegate: FolderTreeRow {
            id: row

            width: view.width
            height: root.rowHeight
            deviceSide: root.deviceSide
            current: ListView.isCurrentItem
            onActiveFocusChanged: keys.noteFocus(this, index, view.currentIndex)
            onHeld: modifiers => {
                forceActiveFocus(Qt.MouseFocusReason);
                root.folders.press(index, modifiers);
            }
            onPicked: modifiers => root.folders.click(index, modifiers)
            onOpenToggled: root.folders.toggleOpen(index)
            onListenWanted: root.folders.listen(index)
            onPlayWanted: root.folders.play(index)
            onPlayNeared: root.folders.preparePlay()
            onQueueWanted: root.folders.toggle(index)
            onMenuWanted: root.openMenu(row, false)
            onDragged: keys.drag(index)
            Keys.onPressed: event => event.accepted = keys.act(index, event, keys.stepsInColumn(root.rowsOfAPage, view.count), {
                [Qt.Key_Left]: () => root.folders.goOut(row.index),
                [Qt.Key_Right]: () => root.folders.goIn(row.index),
                [Qt.Key_Asterisk]: () => root.folders.openBelow(row.index)
            })
        }
    }
}
