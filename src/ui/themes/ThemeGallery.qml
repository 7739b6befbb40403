// The installed themes as tiles in as many columns as fit. One stop for the Tab key: the arrows, Page Up and Down, Home
// and End move, typed letters lead to a name, Return opens, the menu key or Shift+F10 opens the tile's menu.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

FocusScope {
    id: root

    required property ThemesPresenter themes

    readonly property int rowSpacing: 22

    function goTo(row: int) {
        view.currentIndex = Math.max(0, Math.min(row, view.count - 1));
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Motywy")
    Keys.onPressed: event => {
        const step = columns.stepsFrom(view.currentIndex, view.count)[event.key];
        const wantsMenu = event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier;
        const named = step === undefined && !wantsMenu ? root.themes.rowFor(event.text, view.currentIndex) : -1;
        event.accepted = view.count > 0 && (step !== undefined || wantsMenu || named >= 0);
        if (wantsMenu) {
            menu.openFor(view.currentIndex, view.currentItem);
        } else if (event.accepted) {
            root.goTo(named >= 0 ? named : view.currentIndex + step);
        }
    }

    GridColumns {
        id: columns
        width: root.width
        tileSize: 230
        spacing: 18
        around: 0
        rowsOfAPage: Math.max(1, Math.floor(view.height / view.cellHeight))
    }
    ThemeMenu {
        id: menu
        themes: root.themes
    }
    ThemeTile { // the measure of all
        id: measure
        visible: false
        width: columns.tileWidth
        name: "X"
        picture: ""
        source: "X"
        active: false
    }
    GridView {
        id: view
        objectName: "themeGrid"

        readonly property int ringRoom: 4

        x: -ringRoom
        width: columns.count * cellWidth + 2 * ringRoom
        height: root.height
        leftMargin: ringRoom
        topMargin: ringRoom
        bottomMargin: Tokens.space.wide
        cellWidth: columns.tileWidth + columns.spacing
        cellHeight: Math.ceil(measure.implicitHeight) + root.rowSpacing
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false // what has the focus is followed
        model: root.themes.themes
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width + Tokens.space.hair
            height: root.height
        }
        delegate: ThemeTile {
            required property int index

            width: columns.tileWidth
            focusPolicy: GridView.isCurrentItem || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
            onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
            onOpened: root.themes.open(index)
            onMenuWanted: menu.openFor(index, null)
        }
    }
}
