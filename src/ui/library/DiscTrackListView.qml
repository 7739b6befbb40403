// An album's tracks, disc by disc, below what its surroundings put above them. One stop for the Tab key: the arrows,
// Page Up and Down, Home and End move, Return plays the track, Space queues it, the menu key or Shift+F10 opens its menu.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property DiscTrackListModel tracks
    required property bool deviceSide
    default property alias above: head.data

    readonly property int rowHeight: Tokens.height.large
    readonly property int ringRoom: 4
    readonly property int rowsOfAPage: Math.max(1, Math.floor(view.height / root.rowHeight) - 1)
    readonly property real wholeHeight: view.topMargin + view.count * root.rowHeight + view.bottomMargin

    function toTop() {
        view.currentIndex = root.tracks.trackAt(0, 1);
        view.contentY = view.originY - view.topMargin;
    }
    function walk(row: int, step: int) {
        view.currentIndex = root.tracks.trackAt(row, step);
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    ListView {
        id: view
        objectName: "trackList"
        anchors.fill: parent
        anchors.leftMargin: -root.ringRoom
        anchors.rightMargin: -root.ringRoom
        topMargin: head.height + Tokens.space.wide
        bottomMargin: root.ringRoom
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false // what has the focus is followed
        model: root.tracks
        Accessible.role: Accessible.List
        Accessible.name: L10n.text("Utwory")
        Component.onCompleted: root.toTop()
        onTopMarginChanged: if (contentY < originY) contentY = originY - topMargin // the head's lines have found their height
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width + Tokens.space.hair
            height: root.height
        }
        Connections {
            target: root.tracks
            function onModelReset() {
                view.currentIndex = root.tracks.trackAt(view.currentIndex, 1);
            }
            function onRowsRemoved() {
                view.currentIndex = root.tracks.trackAt(view.currentIndex, 1);
            }
        }
        delegate: DiscTrackRow {
            required property int index

            x: root.ringRoom
            width: view.width - 2 * root.ringRoom
            height: root.rowHeight
            deviceSide: root.deviceSide
            current: ListView.isCurrentItem
            onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
            onPlayNeared: root.tracks.preparePlay()
            onPlayed: root.tracks.play(index)
            onToggled: root.tracks.toggle(index)
            onMenuWanted: byKey => menu.openFor(index, this, byKey)
            Keys.onUpPressed: root.walk(index - 1, -1)
            Keys.onDownPressed: root.walk(index + 1, 1)
            Keys.onPressed: event => {
                const row = {
                    [Qt.Key_Home]: 0,
                    [Qt.Key_End]: view.count - 1,
                    [Qt.Key_PageUp]: index - root.rowsOfAPage,
                    [Qt.Key_PageDown]: index + root.rowsOfAPage
                }[event.key];
                if (row !== undefined) {
                    root.walk(row, row < index ? -1 : 1);
                    event.accepted = true;
                }
            }
        }

        Item {
            id: head
            parent: view.contentItem
            x: root.ringRoom
            y: view.originY - height - Tokens.space.wide
            width: view.width - 2 * root.ringRoom
            height: childrenRect.height
        }
    }
    DiscTrackMenu {
        id: menu
        tracks: root.tracks
        deviceSide: root.deviceSide
    }
}
