// The albums as tiles in as many columns as fit. One stop for the Tab key: the arrows, Page Up and Down, Home and End
// move, with Shift they extend the selection and with Control they leave it. Letters lead to a name; Space queues what
// is selected, Return opens the album, with Control it plays, and Control+Space selects.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

FocusScope {
    id: root

    required property AlbumListModel albums
    required property real tileSize
    required property bool deviceSide
    required property bool busy

    readonly property alias around: columns.around
    readonly property int rowSpacing: 23

    function takeFocus() {
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }
    function noteTop() {
        const rows = (view.contentY - view.originY + view.topMargin) / view.cellHeight;
        root.albums.setTopRow(Math.floor(rows) * columns.count + rows - Math.floor(rows));
    }
    function showFrom(row: real) {
        const rows = Math.floor(Math.floor(row) / columns.count) + row - Math.floor(row);
        const lowest = view.originY + view.contentHeight + view.bottomMargin - view.height;
        const highest = view.originY - view.topMargin;
        view.forceLayout();
        view.contentY = Math.max(highest, Math.min(highest + rows * view.cellHeight, lowest));
    }

    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Albumy")

    GridColumns {
        id: columns
        width: root.width
        tileSize: root.tileSize
        rowsOfAPage: Math.max(1, Math.floor(view.height / view.cellHeight))
    }
    ListKeys {
        id: keys
        list: root.albums
        onMenuWanted: menu.openFor(view.currentItem as AlbumCard, true)
    }
    Connections {
        target: root.albums
        function onPlaced(topRow: real) {
            root.showFrom(topRow);
        }
    }
    AlbumMenu {
        id: menu
        albums: root.albums
        deviceSide: root.deviceSide
        busy: root.busy
    }
    TallestCard {
        id: tallest
        width: columns.tileWidth
    }

    Item {
        anchors.fill: parent
        clip: true // here, since shadows and the ring reach beyond the view

        GridView {
            id: view
            objectName: "albumGrid"
            x: columns.around
            width: columns.count * cellWidth + 1
            height: root.height
            topMargin: columns.around
            bottomMargin: columns.around
            cellWidth: columns.tileWidth + columns.spacing
            cellHeight: Math.ceil(tallest.implicitHeight) + root.rowSpacing
            cacheBuffer: 400
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: false
            highlightFollowsCurrentItem: false // what has the focus is followed, and with room for its ring
            model: root.albums
            currentIndex: Math.max(0, root.albums.currentRow) // without a current album the first one is the stop
            onContentYChanged: root.noteTop()
            T.ScrollBar.vertical: ScrollBar {
                parent: root
                x: root.width - width + Tokens.space.hair
                height: root.height
                landmark: pressed ? root.albums.landmark(view.indexAt(1, view.contentY + view.cellHeight / 2)) : ""
            }
            delegate: AlbumCard {
                id: card

                width: columns.tileWidth
                deviceSide: root.deviceSide
                coverDecodeSide: columns.decodeSide
                current: GridView.isCurrentItem
                onActiveFocusChanged: keys.noteFocus(this, index, view.currentIndex)
                onOpened: root.albums.activate(index)
                onPicked: modifiers => root.albums.click(index, modifiers)
                onToggled: root.albums.toggle(index)
                onPlayNeared: root.albums.preparePlay()
                onPlayed: root.albums.play(index)
                onMenuWanted: menu.openFor(card, false)
                onDragged: keys.drag(index)
                Keys.onPressed: event => event.accepted = keys.act(index, event, columns.stepsFrom(index, view.count), {})
            }
        }
    }
}
