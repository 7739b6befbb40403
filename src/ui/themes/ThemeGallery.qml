// The installed themes as tiles in as many columns as fit. One stop for the Tab key: the arrows, Page Up and Down, Home
// and End move, typed letters lead to a name, Return opens, the menu key or Shift+F10 opens the tile's menu.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

FocusScope {
    id: root

    required property ThemesPresenter themes

    readonly property int columnSpacing: 18
    readonly property int rowSpacing: 22
    readonly property int ringRoom: 4
    readonly property int narrowest: 230
    readonly property int columns: Math.max(1,
        Math.floor((root.width + root.columnSpacing) / (root.narrowest + root.columnSpacing)))
    readonly property int tileWidth: Math.floor((root.width - (root.columns - 1) * root.columnSpacing) / root.columns)
    readonly property int rowsOfAPage: Math.max(1, Math.floor(view.height / view.cellHeight))

    function goTo(row: int) {
        view.currentIndex = Math.max(0, Math.min(row, view.count - 1));
        view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Motywy")
    Keys.onPressed: event => {
        const page = root.rowsOfAPage * root.columns;
        const step = {
            [Qt.Key_Left]: -1,
            [Qt.Key_Right]: 1,
            [Qt.Key_Up]: -root.columns,
            [Qt.Key_Down]: root.columns,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page,
            [Qt.Key_Home]: -view.count,
            [Qt.Key_End]: view.count
        }[event.key];
        const wantsMenu = event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier;
        const named = step === undefined && !wantsMenu ? root.themes.rowFor(event.text, view.currentIndex) : -1;
        event.accepted = view.count > 0 && (step !== undefined || wantsMenu || named >= 0);
        if (wantsMenu) {
            menu.openFor(view.currentIndex, view.currentItem);
        } else if (event.accepted) {
            root.goTo(named >= 0 ? named : view.currentIndex + step);
        }
    }

    ThemeMenu {
        id: menu
        themes: root.themes
    }
    ThemeTile { // the measure of all
        id: measure
        visible: false
        width: root.tileWidth
        name: "X"
        picture: ""
        source: "X"
        active: false
    }
    GridView {
        id: view
        objectName: "themeGrid"
        x: -root.ringRoom
        width: root.columns * cellWidth + 2 * root.ringRoom
        height: root.height
        leftMargin: root.ringRoom
        topMargin: root.ringRoom
        bottomMargin: Tokens.space.wide
        cellWidth: root.tileWidth + root.columnSpacing
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

            width: root.tileWidth
            focusPolicy: GridView.isCurrentItem || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
            onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
            onOpened: root.themes.open(index)
            onMenuWanted: menu.openFor(index, null)
        }
    }
}
