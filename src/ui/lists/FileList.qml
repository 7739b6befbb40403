// Files below each other, or what the place is for where there are none. One stop for the Tab key, and the current
// row's button another: the arrows, Page Up and Down, Home and End move; Return and Space act.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property FileListModel files
    required property string title
    required property string symbol
    required property string actionText
    required property string emptySymbol
    required property string emptyTitle
    required property string emptyDetail

    readonly property int lowest: Math.round(150 * Tokens.type.scale)
    readonly property int ringRoom: 4
    readonly property int rowsOfAPage: Math.max(1,
        Math.floor(view.height / (view.currentItem?.height ?? view.height)) - 1)

    signal chosen(int row)

    function walk(row: int) {
        view.currentIndex = Math.max(0, Math.min(row, view.count - 1));
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    implicitHeight: Math.max(root.lowest, root.files.count > 0 ? 0 : nothing.implicitHeight)

    EmptyState {
        id: nothing
        objectName: "emptyState"
        anchors.fill: parent
        visible: root.files.count === 0
        symbol: root.emptySymbol
        title: root.emptyTitle
        detail: root.emptyDetail
    }
    ListView {
        id: view
        objectName: "fileList"
        visible: root.files.count > 0
        anchors.fill: parent
        anchors.leftMargin: -root.ringRoom
        anchors.rightMargin: -root.ringRoom
        topMargin: root.ringRoom
        bottomMargin: root.ringRoom
        clip: true
        spacing: 1
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false // what has the focus is followed
        model: root.files
        Accessible.role: Accessible.List
        Accessible.name: root.title
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width
            height: root.height
        }
        delegate: FileRow {
            required property int index

            x: root.ringRoom
            width: view.width - 2 * root.ringRoom
            symbol: root.symbol
            actionText: root.actionText
            current: ListView.isCurrentItem
            onChosen: root.chosen(index)
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
}
