// The albums as tiles in as many columns as fit. One stop for the Tab key: the arrows move, Space and Return queue the
// album, P plays or pauses it, the menu key opens its menu.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

T.Control {
    id: root

    required property AlbumListModel albums
    required property real tileSize
    required property bool deviceSide
    required property bool busy

    readonly property int columnSpacing: 20
    readonly property int rowSpacing: 23
    readonly property int around: 10
    readonly property int room: Math.floor(root.width) - 2 * root.around
    readonly property int columns: Math.max(1, Math.floor((root.room + root.columnSpacing) / (root.tileSize + root.columnSpacing)))
    readonly property int cardWidth: Math.floor((root.room - (root.columns - 1) * root.columnSpacing) / root.columns)
    property int decodeSide: 0 ///< the width of a card once it rests

    function openMenuOfCurrent() {
        menu.row = view.currentIndex;
        menu.playing = (view.currentItem as AlbumCard).playing;
        menu.popup(view.currentItem, Tokens.space.wide, Tokens.space.wide);
    }

    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Albumy")
    onCardWidthChanged: root.decodeSide === 0 && root.width > 0 ? root.decodeSide = root.cardWidth : settle.restart()
    Keys.onPressed: event => {
        const moved = {
            [Qt.Key_Left]: () => view.moveCurrentIndexLeft(),
            [Qt.Key_Right]: () => view.moveCurrentIndexRight(),
            [Qt.Key_Up]: () => view.moveCurrentIndexUp(),
            [Qt.Key_Down]: () => view.moveCurrentIndexDown(),
            [Qt.Key_Home]: () => view.currentIndex = 0,
            [Qt.Key_End]: () => view.currentIndex = view.count - 1,
            [Qt.Key_Space]: () => root.albums.toggle(view.currentIndex),
            [Qt.Key_Return]: () => root.albums.toggle(view.currentIndex),
            [Qt.Key_Enter]: () => root.albums.toggle(view.currentIndex),
            [Qt.Key_P]: () => root.albums.play(view.currentIndex),
            [Qt.Key_Menu]: () => root.openMenuOfCurrent()
        }[event.key];
        if (moved) {
            root.focusReason = Qt.TabFocusReason;
            moved();
            event.accepted = true;
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
    AlbumCard {
        id: tallest
        visible: false
        width: root.cardWidth
        albumTitle: " "
        artist: " "
        countAndSize: " "
        format: " "
        highResolution: false
        discs: " "
        selected: false
        playing: false
        cover: ""
        deviceSide: false
    }

    contentItem: Item {
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
            highlightMoveDuration: Tokens.motion.appear
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
                ringShown: root.visualFocus && GridView.isCurrentItem
                onToggled: root.albums.toggle(index)
                onPlayNeared: root.albums.preparePlay()
                onPlayed: root.albums.play(index)
                onMenuWanted: {
                    menu.row = index;
                    menu.playing = card.playing;
                    menu.popup(); // at the pointer
                }

                TapHandler {
                    onTapped: {
                        view.currentIndex = card.index;
                        root.forceActiveFocus(Qt.MouseFocusReason);
                    }
                }
            }
        }
    }
}
