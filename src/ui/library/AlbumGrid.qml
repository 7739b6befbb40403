// The albums as tiles in as many columns as fit. One stop for the Tab key: the arrows and Page Up and Down move, Space
// queues the album, Return opens it, P plays or pauses it, the menu key or Shift+F10 opens its menu.
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

    readonly property int columnSpacing: 20
    readonly property int rowSpacing: 23
    readonly property int around: 10
    readonly property int room: Math.floor(root.width) - 2 * root.around
    readonly property int columns: Math.max(1,
        Math.floor((root.room + root.columnSpacing) / (root.tileSize + root.columnSpacing)))
    readonly property int cardWidth: Math.floor((root.room - (root.columns - 1) * root.columnSpacing) / root.columns)
    readonly property int rowsOfAPage: Math.max(1, Math.floor(view.height / view.cellHeight))
    property int decodeSide: 0 ///< the width of a card once it rests

    /// Makes another album the current one, which takes the focus with it: whole rows away, as far as there are, and
    /// steps.
    function walk(rows: int, steps: int) {
        const from = Math.max(0, view.currentIndex); // none is current after a change of all rows
        const above = Math.floor(from / root.columns);
        const below = Math.floor((view.count - 1 - from) / root.columns);
        const row = from + Math.max(-above, Math.min(rows, below)) * root.columns + steps;
        view.currentIndex = Math.max(0, Math.min(row, view.count - 1));
    }
    function takeFocus() {
        view.currentIndex = Math.max(0, view.currentIndex);
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }
    function openMenuOfCurrent() {
        menu.openFor(view.currentIndex, (view.currentItem as AlbumCard)?.playing ?? false, view.currentItem);
    }

    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Albumy")
    onCardWidthChanged: root.decodeSide === 0 && root.width > 0 ? root.decodeSide = root.cardWidth : settle.restart()
    Keys.onPressed: event => {
        const action = {
            [Qt.Key_Left]: () => root.walk(0, -1),
            [Qt.Key_Right]: () => root.walk(0, 1),
            [Qt.Key_Up]: () => root.walk(-1, 0),
            [Qt.Key_Down]: () => root.walk(1, 0),
            [Qt.Key_PageUp]: () => root.walk(-root.rowsOfAPage, 0),
            [Qt.Key_PageDown]: () => root.walk(root.rowsOfAPage, 0),
            [Qt.Key_Home]: () => root.walk(0, -view.count),
            [Qt.Key_End]: () => root.walk(0, view.count),
            [Qt.Key_P]: () => root.albums.play(view.currentIndex),
            [Qt.Key_Menu]: () => root.openMenuOfCurrent(),
            [Qt.Key_F10]: event.modifiers & Qt.ShiftModifier ? () => root.openMenuOfCurrent() : null
        }[event.key];
        event.accepted = view.count > 0 && Boolean(action);
        if (event.accepted) {
            action();
        }
    }

    Timer {
        id: settle
        interval: Tokens.motion.settle
        onTriggered: root.decodeSide = root.cardWidth
    }
    AlbumMenu {
        id: menu
        albums: root.albums
        deviceSide: root.deviceSide
        busy: root.busy
    }
    TallestCard {
        id: tallest
        width: root.cardWidth
    }

    Item {
        anchors.fill: parent
        clip: true // here, since shadows and the ring reach beyond the view

        GridView {
            id: view
            objectName: "albumGrid"
            x: root.around
            width: root.columns * cellWidth + 1
            height: root.height
            topMargin: root.around
            bottomMargin: root.around
            cellWidth: root.cardWidth + root.columnSpacing
            cellHeight: Math.ceil(tallest.implicitHeight) + root.rowSpacing
            cacheBuffer: 400
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: false
            highlightFollowsCurrentItem: false // what has the focus is followed, and with room for its ring
            model: root.albums
            T.ScrollBar.vertical: ScrollBar {
                parent: root
                x: root.width - width + Tokens.space.hair
                height: root.height
            }
            delegate: AlbumCard {
                id: card

                required property int index

                width: root.cardWidth
                deviceSide: root.deviceSide
                coverDecodeSide: root.decodeSide
                focusPolicy: GridView.isCurrentItem || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
                onOpened: root.albums.open(index)
                onToggled: root.albums.toggle(index)
                onPlayNeared: root.albums.preparePlay()
                onPlayed: root.albums.play(index)
                onMenuWanted: menu.openFor(index, card.playing, null)
            }
        }
    }
}
