// The library page over a real model: its states, its keyboard, and large text.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Library"
    width: 800
    height: 760

    Component {
        id: pageComponent
        LibraryPage {
            width: 800
            height: 760
        }
    }

    property LibraryPage page

    function open(count) {
        root.page = make(pageComponent, { model: root.bench.model, library: root.bench.library });
        for (let i = 0; i < count; ++i) {
            root.bench.addAlbum("Wykonawca", "Album " + "ABCDEFGHIJ"[i]);
        }
        tryCompare(part("albumGrid"), "count", count);
    }
    function part(name) {
        return findChild(root.page, name);
    }
    function tile(row) {
        tryVerify(() => part("albumGrid").itemAtIndex(row) !== null);
        return part("albumGrid").itemAtIndex(row);
    }

    function test_saysWhetherItIsEmptyOrFilteredOut() {
        open(0);
        const empty = part("emptyState");
        const inviting = empty.title;
        verify(empty.visible);
        root.bench.addAlbum("Wykonawca", "Album");
        tryVerify(() => !empty.visible);
        compare(part("countsText").text, "Albumy: 1 · Utwory: 2");
        const formats = part("formatPicker");
        mouseClick(formats, formats.width - 5, formats.height / 2);
        compare(root.bench.model.formatFilter, "Pozostałe");
        tryVerify(() => empty.visible);
        verify(empty.title !== inviting);
        mouseClick(part("hiResCheck"));
        verify(root.bench.model.hiResOnly);
        root.bench.model.libraryOnDevice = true;
        tryCompare(empty, "title", inviting);
        verify(!part("readDeviceButton").enabled);
        root.bench.connectDevice("IPOD", true);
        verify(part("readDeviceButton").enabled);
    }

    function test_theGridIsWalkedByKeyboard() {
        open(7);
        const grid = part("albumGrid");
        const columns = Math.floor(grid.width / grid.cellWidth);
        verify(columns >= 2);
        mouseClick(tile(0), 20, 20);
        compare(root.bench.queuedTracks(), 0); // only the tile's button queues it
        const steps = [[Qt.Key_Right, 1], [Qt.Key_Down, 1 + columns], [Qt.Key_Left, columns], [Qt.Key_Up, 0],
            [Qt.Key_End, 6], [Qt.Key_Down, 6], [Qt.Key_Home, 0], [Qt.Key_PageDown, columns], [Qt.Key_PageUp, 0]];
        for (const [key, expected] of steps) {
            keyClick(key);
            compare(grid.currentIndex, expected);
        }
        tryVerify(() => tile(0).visualFocus);
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 2);
        keyClick(Qt.Key_Right);
        root.bench.albumSheet.dismiss(); // which the click has opened
        keyClick(Qt.Key_Return);
        compare(root.bench.albumSheet.albumTitle, tile(1).albumTitle);
        verify(root.bench.albumSheet.wanted);
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 4);
        compare(tile(1).Accessible.name, "Album B, Wykonawca");
        mouseClick(findChild(tile(1), "queueButton"));
        compare(root.bench.queuedTracks(), 2);
        for (const [key, modifier] of [[Qt.Key_Menu, Qt.NoModifier], [Qt.Key_F10, Qt.ShiftModifier]]) {
            keyClick(key, modifier);
            tryVerify(() => !tile(1).activeFocus); // but the menu
            keyClick(Qt.Key_Escape);
            tryVerify(() => tile(1).visualFocus);
        }
        compare(menuEntries(tile(1)), ["Otwórz album", "Odtwórz", "Dodaj do kolejki", "Dodaj / zmień okładkę…",
            "Znajdź w sieci…", "Pokaż pliki w Finderze", "Usuń z biblioteki Marlune"]);
        // Several at once.
        for (const [key, modifiers, marked] of [[Qt.Key_Home, Qt.NoModifier, 1], [Qt.Key_Down, Qt.ShiftModifier, columns + 1],
            [Qt.Key_Escape, Qt.NoModifier, 0], [Qt.Key_A, Qt.ControlModifier, 7], [Qt.Key_End, Qt.NoModifier, 1],
            [Qt.Key_Left, Qt.ControlModifier, 1], [Qt.Key_Left, Qt.ShiftModifier, 3]]) {
            keyClick(key, modifiers);
            compare(root.bench.library.albums.selectedCount, marked);
        }
        verify(tile(4).marked && tile(6).marked && tile(4).visualFocus);
        compare(menuEntries(tile(4)), ["Dodaj do kolejki", "Pokaż pliki w Finderze"]);
        root.bench.model.clearQueue();
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 6);
        mouseClick(tile(0), 20, 20, Qt.LeftButton, Qt.ControlModifier);
        mouseClick(tile(2), 20, 20, Qt.LeftButton, Qt.ShiftModifier);
        compare(root.bench.library.albums.selectedCount, 3);
        root.bench.model.sortMode = "Album";
        tryVerify(() => tile(0).marked && tile(2).marked && !tile(3).marked);
        for (const letter of ["a", "l", "b", "u", "m", " ", "d"]) {
            keyClick(letter);
        }
        compare(grid.currentIndex, 3);
        compare(root.bench.library.albums.selectedCount, 1);
        const onMenu = () => root.page.Window.activeFocusItem instanceof MenuItem;
        keyClick(Qt.Key_Menu);
        keyClick(Qt.Key_Down);
        verify(onMenu());
        root.bench.model.search = "zzz"; // the row that the menu is about is another one, or none
        tryCompare(grid, "count", 0);
        tryVerify(() => !onMenu());
        for (const key of [Qt.Key_Menu, Qt.Key_Down]) {
            keyClick(key); // nothing is there to act on
        }
        part("albumGrid").reuseItems = false; // what the menu was opened by goes for good
        root.bench.model.search = "";
        tryVerify(() => tile(2) !== null);
        mouseClick(tile(2), 20, 20, Qt.RightButton);
        tryVerify(() => !tile(2).activeFocus);
        keyClick(Qt.Key_Down);
        verify(onMenu());
        keyClick(Qt.Key_Escape);
    }

    function test_anAlbumIsPlayedByKeyboardAndMouse() {
        open(1);
        root.bench.addSounds("Dźwięki");
        tryCompare(part("albumGrid"), "count", 2);
        tryVerify(() => tile(0).albumTitle === "Dźwięki");
        const button = findChild(tile(0), "playButton");
        verify(!button.visible);
        mouseClick(tile(1), 20, 20);
        keyClick(Qt.Key_Home);
        tryVerify(() => button.visible);
        keyClick(Qt.Key_Return, Qt.ControlModifier);
        tryCompare(tile(0), "playing", true);
        verify(!tile(1).playing && button.Accessible.name === "Pauza");
        mouseClick(button);
        tryCompare(tile(0), "playing", false);
    }

    function test_foldersAreWalkedByKeyboardAndMouse() {
        open(2);
        root.bench.model.viewMode = "Foldery";
        tryVerify(() => part("folderTree") !== null && part("folderTree").count > 2);
        const tree = part("folderTree");
        const row = index => tree.itemAtIndex(index);
        part("addMusicButton").forceActiveFocus();
        root.page.focusContent();
        tryVerify(() => tree.currentItem.visualFocus);
        keyClick(Qt.Key_End);
        const last = tree.currentIndex;
        verify(last > 1 && tree.currentItem.isFolder && !tree.currentItem.open);
        const before = tree.count;
        keyClick(Qt.Key_Right);
        compare(tree.count, before + 2);
        keyClick(Qt.Key_Right);
        compare(tree.currentItem.name, "1.flac");
        verify(tree.currentItem.activeFocus && tree.currentItem.Accessible.name.startsWith("1.flac, Poziom "));
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 1);
        compare(row(last).chosen, FolderTreeModel.SomeChosen);
        keyClick("2");
        compare(tree.currentItem.name, "2.flac");
        keyClick(Qt.Key_Up, Qt.ShiftModifier);
        verify(tree.currentItem.marked && row(last + 2).marked);
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 2);
        keyClick(Qt.Key_Escape);
        verify(!tree.currentItem.marked);
        keyClick(Qt.Key_Return);
        verify(root.bench.albumSheet.wanted);
        compare(menuEntries(tree.currentItem), ["Odtwórz", "Usuń z kolejki", "Pokaż w Finderze", "Album"]);
        keyClick(Qt.Key_Left);
        compare(tree.currentIndex, last);
        keyClick(Qt.Key_Left);
        compare(tree.count, before);
        mouseClick(findChild(row(last), "openArrow"));
        compare(tree.count, before + 2);
        mouseDoubleClickSequence(row(last), 200, 10);
        compare(tree.count, before);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(root.bench.library.folders.selectedCount, before);
        keyClick(Qt.Key_Home);
        keyClick(Qt.Key_Asterisk);
        compare(tree.count, before + 4);
        compare(menuEntries(tree.currentItem), ["Zwiń", "Rozwiń ze wszystkim w środku", "Odtwórz", "Dodaj do kolejki"]);
    }

    function test_whatHasTheFocusIsInSightAndThePageShown() {
        open(3);
        DesktopScheme.textScale = 1.5;
        root.page.height = 300;
        part("addMusicButton").forceActiveFocus(Qt.TabFocusReason);
        const first = root.page.Window.activeFocusItem;
        let stops = 0;
        do {
            const item = root.page.Window.activeFocusItem;
            const top = () => item.mapToItem(root.page, 0, 0).y;
            tryVerify(() => top() >= 3 && top() + Math.min(item.height, 280) <= 297, 1000, String(item));
            keyClick(Qt.Key_Tab);
        } while (root.page.Window.activeFocusItem !== first && ++stops < 20);
        verify(stops > 5 && stops < 20);
        keyClick(Qt.Key_F, Qt.ControlModifier);
        verify(part("searchField").activeFocus);
        first.forceActiveFocus();
        root.page.visible = false;
        keyClick(Qt.Key_F, Qt.ControlModifier);
        verify(!part("searchField").activeFocus);
    }

    function test_filesCanBeDroppedAnywhere() {
        open(0);
        const highlight = part("dropHighlight");
        verify(root.bench.dragFileOver(root.page));
        tryCompare(highlight, "visible", true);
        root.bench.dragAway(root.page);
        tryCompare(highlight, "visible", false);
        verify(root.bench.dragFileOver(root.page));
        root.bench.letGoOver(root.page);
        tryVerify(() => root.bench.queuedTracks() === 1);
        compare(tile(0).albumTitle, "Dropped");
    }

    function test_largeTextIsNotCut() {
        open(2);
        const hint = part("searchField").placeholderText; // may end in an ellipsis
        root.page.height = 500;
        for (const [scale, wide] of root.textSizes) {
            DesktopScheme.textScale = scale;
            root.page.width = wide;
            waitForRendering(root.page);
            compare(root.bench.clippedTexts(root.page).filter(text => text !== hint), [], String([scale, wide]));
        }
    }
}
