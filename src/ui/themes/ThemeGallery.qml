// The installed themes as tiles in as many columns as fit. One stop for the Tab key: the arrows, Page Up and Down, Home
// and End move, typed letters lead to a name, Return or Space opens, the menu key or Shift+F10 opens the tile's menu.
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
    /// Whether the key of `event`, pressed on a tile, led anywhere.
    function act(row: int, tile: Item, event: var): bool {
        const step = columns.stepsFrom(row, view.count)[event.key];
        const named = step === undefined ? root.themes.rowFor(event.text, event.modifiers, row) : -1;
        const open = () => root.themes.open(row);
        const openMenu = () => menu.openFor(row, tile);
        const action = named >= 0 || step !== undefined ? () => root.goTo(named >= 0 ? named : row + step) : {
            [Qt.Key_Space]: open,
            [Qt.Key_Return]: open,
            [Qt.Key_Enter]: open,
            [Qt.Key_Menu]: openMenu,
            [Qt.Key_F10]: event.modifiers & Qt.ShiftModifier ? openMenu : null
        }[event.key];
        action?.();
        return Boolean(action);
    }

    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Motywy")

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
        source: L10n.text("Dodaj własny zrzut lub pobierz podgląd")
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
            id: tile

            required property int index

            width: columns.tileWidth
            focusPolicy: GridView.isCurrentItem || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
            onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
            onOpened: root.themes.open(index)
            onMenuWanted: menu.openFor(index, null)
            Keys.onPressed: event => event.accepted = root.act(index, tile, event)
        }
    }
}
