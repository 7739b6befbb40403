// The tracks as a table, of which only the visible rows are alive. One stop for the Tab key: the arrows, Page Up and
// Down, Home and End move, with Shift they extend the selection and with Control they leave it. Letters lead to a
// title; Space queues what is selected, Return opens the album, with Control it plays, and Control+Space selects.
//
// A ListView of rows rather than a TableView of cells: a row is one place for the keyboard and one item for a reader.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

FocusScope {
    id: root

    required property TrackListModel tracks
    required property bool deviceSide

    readonly property int rowsOfAPage: Math.max(1, Math.floor(view.height / sizes.rowHeight) - 1)

    function takeFocus() {
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }
    function openMenuOfCurrent() {
        menu.openFor(view.currentIndex, (view.currentItem as TrackRow)?.playing ?? false, view.currentItem);
    }
    function noteView() {
        root.tracks.setView((view.contentY - view.originY) / sizes.rowHeight, view.height / sizes.rowHeight);
    }
    function showFrom(row: real) {
        view.positionViewAtIndex(Math.floor(row), ListView.Beginning);
        view.contentY = Math.min(view.contentY + (row - Math.floor(row)) * sizes.rowHeight,
            Math.max(view.originY, view.originY + view.contentHeight - view.height));
    }
    ListKeys {
        id: keys
        list: root.tracks
        onMenuWanted: root.openMenuOfCurrent()
    }
    TrackColumns {
        id: sizes
        width: root.width
    }
    TrackMenu {
        id: menu
        tracks: root.tracks
        deviceSide: root.deviceSide
    }
    Connections {
        target: root.tracks
        function onPlaced(topRow: real) {
            root.showFrom(topRow);
        }
    }
    TrackHeader {
        id: header
        width: parent.width
        columns: sizes
    }
    ListView {
        id: view
        objectName: "trackList"
        y: header.height
        width: root.width
        height: root.height - y
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false // what has the focus is followed
        model: root.tracks
        currentIndex: Math.max(0, root.tracks.currentRow) // without a current row the first one is the stop
        Accessible.role: Accessible.List
        Accessible.name: L10n.text("Utwory")
        onContentYChanged: root.noteView()
        onHeightChanged: root.noteView()
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width
            y: view.y
            height: view.height
            landmark: pressed ? root.tracks.landmark(view.indexAt(1, view.contentY + sizes.rowHeight)) : ""
        }
        delegate: TrackRow {
            id: row

            width: view.width
            columns: sizes
            deviceSide: root.deviceSide
            current: ListView.isCurrentItem
            onActiveFocusChanged: keys.noteFocus(this, index, view.currentIndex)
            onHeld: modifiers => {
                forceActiveFocus(Qt.MouseFocusReason);
                root.tracks.press(index, modifiers);
            }
            onPicked: modifiers => root.tracks.click(index, modifiers)
            onListenWanted: root.tracks.listen(index)
            onPlayWanted: root.tracks.play(index)
            onPlayNeared: root.tracks.preparePlay()
            onQueueWanted: root.tracks.toggle(index)
            onMenuWanted: menu.openFor(index, row.playing, null)
            onDragged: keys.drag(index)
            Keys.onPressed: event => event.accepted = keys.act(index, event, keys.stepsInColumn(root.rowsOfAPage, view.count), {})
        }
    }
}
