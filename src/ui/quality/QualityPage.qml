// What is amiss in the collection, and the means to mend it. The page scrolls as a whole.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property QualityPresenter quality

    readonly property int around: 24
    readonly property int rowsOfAPage: Math.max(1,
        Math.floor(view.height / ((view.currentItem?.height ?? 0) + view.spacing)) - 1)
    property real headHeight: 0 ///< the room that the list leaves for it

    /// Makes another row the one that the keyboard is at.
    function walk(row: int) {
        view.currentIndex = Math.max(0, Math.min(row, view.count - 1));
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    clip: true

    // Head and empty state move with the rows, but are none of the view's: a header would lose the keyboard to the
    // current row whenever the rows change, and Qt 6.4 makes none of a component that is bound to its surroundings.
    QualityHead {
        id: head
        x: view.x
        y: view.originY - view.contentY - height - view.spacing
        z: 1
        width: view.width
        model: root.model
        quality: root.quality
        scrolledBy: view
        onHeightChanged: {
            // What is above a note that grows keeps its place, also where the list takes itself to be scrolled too far.
            const above = view.contentY < view.originY ? view.contentY + view.topMargin - view.originY : -1;
            root.headHeight = height;
            if (above >= 0) {
                view.contentY = view.originY - view.topMargin + above;
            }
        }
    }
    ListView {
        id: view
        objectName: "issueList"
        x: root.around
        width: root.width - 2 * root.around
        height: root.height
        topMargin: root.around + root.headHeight + spacing
        bottomMargin: root.around + (nothing.wanted ? nothing.height : 0)
        spacing: 14
        cacheBuffer: 400
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false // what has the focus is followed, and with room for its ring
        model: root.quality.issues
        Accessible.role: Accessible.List
        Accessible.name: L10n.text("Problemy")
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width
            height: root.height
        }
        delegate: IssueRow {
            required property int index

            width: view.width
            current: ListView.isCurrentItem
            canRepair: !root.model.busy
            onRepairWanted: root.quality.chooseCover(index, true)
            onLookupWanted: root.quality.lookUpCover(index)
            onCoverWanted: root.quality.chooseCover(index, false)
            onAlbumWanted: root.quality.openAlbum(index)
            onFilesWanted: root.quality.reveal(index)
            onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
            Keys.onUpPressed: root.walk(index - 1)
            Keys.onDownPressed: root.walk(index + 1)
            Keys.onPressed: event => {
                const row = {
                    [Qt.Key_Home]: 0,
                    [Qt.Key_End]: view.count - 1,
                    [Qt.Key_PageUp]: index - root.rowsOfAPage,
                    [Qt.Key_PageDown]: index + root.rowsOfAPage
                }[event.key];
                if (row !== undefined) {
                    root.walk(row);
                    event.accepted = true;
                }
            }
        }
    }
    Item {
        id: nothing

        // Not while the first music is being read: what is missing is on its way.
        readonly property bool wanted: root.quality.issues.count === 0
            && !(root.quality.withoutMusic && root.model.readingMusic)

        x: view.x
        y: view.originY - view.contentY
        width: view.width
        height: Math.max(words.implicitHeight + Tokens.space.group, view.height - view.topMargin - root.around)
        visible: nothing.wanted

        ColumnLayout {
            id: words
            anchors.centerIn: parent
            width: parent.width
            spacing: Tokens.space.regular

            EmptyState {
                objectName: "noIssues"
                Layout.fillWidth: true
                symbol: root.quality.withoutMusic ? "sparkles"
                    : root.quality.clean ? "checkmark.circle" : "magnifyingglass"
                symbolSide: 42
                title: root.quality.emptyTitle
                titleFont: Tokens.type.headline
                detail: root.quality.emptyDetail
                detailFont: Tokens.type.caption
            }
            Button {
                objectName: "openMusicButton"
                Layout.alignment: Qt.AlignHCenter
                visible: root.quality.withoutMusic
                text: L10n.text("Otwórz muzykę")
                onClicked: root.quality.openMusic()
            }
        }
    }
}
