// The releases that a search for a cover has found. One stop for the Tab key, and the current row's buttons others: the
// arrows, Home and End move, Return takes the row's picture.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property CoverSearchPresenter search

    readonly property int ringRoom: 4

    ListView {
        id: view
        objectName: "resultList"
        anchors.fill: parent
        anchors.leftMargin: -root.ringRoom
        anchors.rightMargin: -root.ringRoom
        topMargin: root.ringRoom
        bottomMargin: root.ringRoom
        clip: true
        cacheBuffer: 0 // a row's picture is fetched when the row is made
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        model: root.search.results
        onCountChanged: currentIndex = Math.max(0, currentIndex) // none is current after a change of all rows
        Accessible.role: Accessible.List
        Accessible.name: L10n.text("Znajdź okładkę")
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width + Tokens.space.hair
            height: root.height
        }
        delegate: CoverResultRow {
            id: row

            required property int index

            function walk(to: int) {
                view.currentIndex = Math.max(0, Math.min(to, view.count - 1));
                view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
            }

            x: root.ringRoom
            width: view.width - 2 * root.ringRoom
            current: ListView.isCurrentItem
            canDownload: root.search.canDownload
            Component.onCompleted: root.search.results.wantPicture(index)
            onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
            onChosen: root.search.download(index)
            onSourceWanted: root.search.openSource(index)
            Keys.onUpPressed: row.walk(index - 1)
            Keys.onDownPressed: row.walk(index + 1)
            Keys.onPressed: event => {
                event.accepted = event.key === Qt.Key_Home || event.key === Qt.Key_End;
                if (event.accepted) {
                    row.walk(event.key === Qt.Key_Home ? 0 : view.count - 1);
                }
            }
        }
    }
}
