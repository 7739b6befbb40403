// The library page's table of tracks over a real model: its keyboard, its mouse, what stays, and large text.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Tracks"
    width: 800
    height: 860

    Component {
        id: pageComponent
        LibraryPage {
            width: 800
            height: 700
        }
    }
    Component {
        id: barComponent
        TransferBar {
            y: 700
            width: 800
            height: 120
        }
    }

    property LibraryPage page

    function open(albums) {
        root.bench.model.viewMode = "Utwory";
        root.page = make(pageComponent, { model: root.bench.model, library: root.bench.library });
        for (let i = 0; i < albums; ++i) {
            root.bench.addAlbum("Wykonawca " + "ABCDEFGHIJKLMNOPQRSTUVWXYZ"[i], "Album");
        }
        tryCompare(list(), "count", 2 * albums);
    }
    function part(name) {
        return findChild(root.page, name);
    }
    function list() {
        return part("trackList");
    }
    function row(place) {
        tryVerify(() => list().itemAtIndex(place) !== null);
        return list().itemAtIndex(place);
    }
    function marked() {
        return below(list()).filter(item => item.marked === true).map(item => item.index).sort((a, b) => a - b);
    }

    function test_theTableIsWalkedByKeyboard() {
        open(20);
        mouseClick(row(1), 200, 10);
        compare(marked(), [1]);
        const shift = Qt.ShiftModifier;
        const control = Qt.ControlModifier;
        const page = root.page && Math.floor(list().height / row(0).height) - 1;
        const steps = [[Qt.Key_Down, 0, 2, 1], [Qt.Key_Down, shift, 3, 2], [Qt.Key_Down, control, 4, 2],
            [Qt.Key_Space, control, 4, 3], [Qt.Key_Home, shift, 0, 5], [Qt.Key_End, 0, 39, 1], [Qt.Key_Down, 0, 39, 1],
            [Qt.Key_Home, 0, 0, 1], [Qt.Key_PageDown, 0, page, 1], [Qt.Key_PageUp, shift, 0, page + 1],
            [Qt.Key_A, control, 0, 40], [Qt.Key_Escape, 0, 0, 0], [Qt.Key_End, shift, 39, 40]];
        for (const [key, modifiers, current, count] of steps) {
            keyClick(key, modifiers);
            compare(list().currentIndex, current, String(key));
            compare(root.bench.library.tracks.selectedCount, count, String(key));
            tryVerify(() => row(current).visualFocus);
            const top = () => row(current).mapToItem(list(), 0, 0).y;
            tryVerify(() => top() >= 0 && top() + row(current).height <= list().height, 1000, String(key));
        }
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 40);
        keyClick(Qt.Key_Home);
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 39);
        keyClick("2"); // the first title that begins so
        compare(list().currentIndex, 1);
        keyClick(Qt.Key_Space); // belongs to what is typed
        compare(root.bench.queuedTracks(), 39);
        for (const [key, modifier] of [[Qt.Key_Menu, Qt.NoModifier], [Qt.Key_F10, shift]]) {
            keyClick(key, modifier);
            tryVerify(() => !row(1).activeFocus); // but the menu
            keyClick(Qt.Key_Escape);
            tryVerify(() => row(1).visualFocus);
        }
        compare(menuEntries(row(1)), ["Otwórz album", "Odtwórz", "Usuń z kolejki", "Pokaż w Finderze"]);
        keyClick(Qt.Key_Return);
        verify(root.bench.albumSheet.wanted);
    }

    function test_theMouseSelectsAndQueues() {
        open(4);
        for (const [place, modifiers, expected] of [[1, 0, [1]], [3, Qt.ShiftModifier, [1, 2, 3]],
            [2, Qt.ControlModifier, [1, 3]], [5, Qt.ControlModifier, [1, 3, 5]]]) {
            mouseClick(row(place), 200, 10, Qt.LeftButton, modifiers);
            compare(marked(), expected);
        }
        mousePress(row(3), 200, 10);
        compare(marked(), [1, 3, 5]); // perhaps a drag of all
        mouseRelease(row(3), 200, 10);
        compare(marked(), [3]);
        mouseClick(findChild(row(6), "queueButton"));
        compare(root.bench.queuedTracks(), 1);
        tryCompare(row(6), "chosen", true);
        compare(marked(), [3]);
        verify(/^(01 )?1, Wykonawca A$/.test(row(0).Accessible.name), row(0).Accessible.name);
    }

    function test_searchAndListHandTheKeyboardOver() {
        open(2);
        row(0).forceActiveFocus();
        keyClick(Qt.Key_F, Qt.ControlModifier);
        const search = part("searchField");
        verify(search.activeFocus);
        keyClick("w");
        keyClick(Qt.Key_Escape);
        compare(search.text, "");
        verify(search.activeFocus);
        keyClick(Qt.Key_Escape);
        tryVerify(() => row(0).visualFocus);
        search.forceActiveFocus();
        keyClick(Qt.Key_Down);
        tryVerify(() => row(0).visualFocus);
    }

    function test_eachViewKeepsItsPlace() {
        open(20);
        verify(!part("tileSlider").visible);
        verify(part("albumGrid") === null); // not made yet
        mouseClick(row(5), 200, 10);
        list().contentY = 330;
        root.bench.model.viewMode = "Albumy";
        tryVerify(() => part("albumGrid") !== null && part("albumGrid").visible);
        verify(part("tileSlider").visible && !list().visible);
        root.bench.model.search = "Wykonawca";
        root.bench.model.viewMode = "Utwory";
        tryVerify(() => list().visible);
        compare(list().contentY, 330);
        compare(list().currentIndex, 5);
        compare(root.bench.library.tracks.selectedCount, 1);
        root.bench.model.sortMode = "Album"; // the selected row is not in sight: to the top
        tryCompare(list(), "contentY", 0);
        root.bench.model.libraryOnDevice = true;
        compare(root.bench.model.search, "Wykonawca");
        tryVerify(() => part("emptyState").visible);
    }

    function test_ownDragsAreQueuedAndNotImported() {
        open(1);
        const bar = make(barComponent, { model: root.bench.model, shell: root.bench.shell });
        verify(!root.bench.dragTrackOver(root.page, false));
        root.bench.dragAway(root.page);
        verify(!root.bench.dragTrackOver(bar, true));
        root.bench.dragAway(bar);
        verify(root.bench.dragTrackOver(bar, false));
        tryVerify(() => findChild(bar, "queueHighlight").visible);
        root.bench.letGoOver(bar);
        compare(root.bench.queuedTracks(), 1);
        verify(root.bench.dragFileOver(bar));
        root.bench.letGoOver(bar);
        tryVerify(() => root.bench.queuedTracks() === 2); // read, and queued
    }

    function test_largeTextIsNotCut() {
        open(3);
        const hint = part("searchField").placeholderText; // may end in an ellipsis
        const allowed = [hint, row(0).parameters, "Parametry", "Tytuł i wykonawca"]; // these give way
        for (const [scale, wide] of root.textSizes) {
            DesktopScheme.textScale = scale;
            root.page.width = wide;
            waitForRendering(root.page);
            compare(root.bench.clippedTexts(root.page).filter(text => !allowed.includes(text)
                && !text.startsWith(" · ")), [], String([scale, wide]));
        }
    }
}
