// The library page over a real model: its states, its keyboard, and large text.
import QtQuick
import QtTest
import Marlune
import MarluneTest

TestCase {
    id: root
    name: "Library"
    when: windowShown
    width: 800
    height: 760
    visible: true

    Component {
        id: benchComponent
        Bench {}
    }
    Component {
        id: pageComponent
        LibraryPage {
            anchors.fill: parent
        }
    }

    property Bench bench
    property LibraryPage page

    function init() {
        failOnWarning(/.?/);
        root.bench = createTemporaryObject(benchComponent, root);
        root.page = createTemporaryObject(pageComponent, root, { model: root.bench.model, library: root.bench.library });
        waitForRendering(root.page);
    }
    function cleanup() {
        root.page.destroy();
        root.page = null;
        wait(0);
    }
    function fill(count) {
        for (let i = 0; i < count; ++i) {
            root.bench.addAlbum("Wykonawca", "Album " + "ABCDEFGHIJ"[i]);
        }
        tryCompare(findChild(root.page, "albumGrid"), "count", count);
        tile(0);
    }
    function tile(row) {
        const grid = findChild(root.page, "albumGrid");
        tryVerify(() => grid.itemAtIndex(row) !== null);
        return grid.itemAtIndex(row);
    }

    function test_saysWhetherItIsEmptyOrFilteredOut() {
        const empty = findChild(root.page, "emptyState");
        verify(empty.visible);
        compare(empty.title, "Dodaj muzykę lub odczytaj iPoda");
        fill(1);
        tryVerify(() => !empty.visible);
        compare(tile(0).albumTitle, "Album A");
        compare(findChild(root.page, "countsText").text, "Albumy: 1 · Utwory: 2");
        root.bench.model.formatFilter = "MP3";
        tryVerify(() => empty.visible);
        compare(empty.title, "Brak utworów dla tych filtrów");
        root.bench.model.libraryOnDevice = true;
        tryCompare(empty, "title", "Dodaj muzykę lub odczytaj iPoda");
        compare(root.bench.model.formatFilter, "MP3");
    }

    function test_filtersReachTheModel() {
        fill(2);
        const formats = findChild(root.page, "formatPicker");
        mouseClick(formats, formats.width - 5, formats.height / 2);
        compare(root.bench.model.formatFilter, "Pozostałe");
        mouseClick(formats, 5, formats.height / 2);
        compare(root.bench.model.formatFilter, "Wszystko");
        mouseClick(findChild(root.page, "hiResCheck"), 8, 10);
        verify(root.bench.model.hiResOnly);
        mouseClick(findChild(root.page, "hiResCheck"), 8, 10);
        const search = findChild(root.page, "searchField");
        search.forceActiveFocus();
        for (const letter of "album b") {
            keyClick(letter);
        }
        tryCompare(findChild(root.page, "albumGrid"), "count", 1);
        tryVerify(() => tile(0).albumTitle === "Album B");
        keyClick(Qt.Key_Escape);
        tryCompare(findChild(root.page, "albumGrid"), "count", 2);
    }

    function test_aTileIsQueuedByItsButtonAlone() {
        fill(2);
        const button = findChild(tile(1), "queueButton");
        compare(button.text, "Do kolejki");
        mouseClick(tile(1), 20, 20);
        compare(root.bench.queuedTracks(), 0);
        mouseClick(button);
        compare(root.bench.queuedTracks(), 2);
        tryCompare(button, "text", "Zaznaczono");
        mouseClick(button);
        tryCompare(button, "text", "Do kolejki");
    }

    function test_theGridIsWalkedByKeyboard() {
        fill(7);
        const grid = findChild(root.page, "albumGrid");
        const columns = Math.floor(grid.width / grid.cellWidth);
        verify(columns >= 2);
        tile(0).parent.parent.parent.parent.forceActiveFocus(Qt.TabFocusReason);
        const steps = [[Qt.Key_Right, 1], [Qt.Key_Down, 1 + columns], [Qt.Key_Left, columns], [Qt.Key_Up, 0],
            [Qt.Key_End, 6], [Qt.Key_Home, 0]];
        for (const [key, expected] of steps) {
            keyClick(key);
            compare(grid.currentIndex, expected);
        }
        verify(tile(0).ringShown);
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 2);
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_Return);
        compare(root.bench.queuedTracks(), 4);
        compare(tile(1).Accessible.name, "Album B, Wykonawca");
    }

    function test_selectingKeepsThePlace() {
        fill(9);
        root.bench.model.tileSize = 240;
        const grid = findChild(root.page, "albumGrid");
        tryVerify(() => grid.contentHeight > grid.height + 200);
        grid.contentY = grid.originY + 200;
        const place = grid.contentY;
        root.bench.library.albums.toggle(4);
        tryCompare(tile(4), "selected", true);
        compare(grid.contentY, place);
        root.bench.addAlbum("Zespół", "Ostatni");
        tryCompare(grid, "count", 10);
        compare(grid.contentY, place);
    }

    function test_theDeviceOffersPlaylists() {
        fill(1);
        const card = tile(0);
        card.deviceSide = true;
        compare(findChild(card, "queueButton").text, "Do playlisty");
        verify(!findChild(root.page, "readDeviceButton").enabled);
        root.bench.connectDevice("IPOD", true);
        verify(findChild(root.page, "readDeviceButton").enabled);
    }

    function test_filesCanBeDroppedAnywhere() {
        const highlight = findChild(root.page, "dropHighlight");
        verify(root.bench.dragFileOver(root.page));
        tryCompare(highlight, "visible", true);
        root.bench.dragAway(root.page);
        tryCompare(highlight, "visible", false);
        compare(root.bench.model.status, "Gotowy na Twoją muzykę");
        verify(root.bench.dragFileOver(root.page));
        root.bench.letGoOver(root.page);
        tryVerify(() => root.bench.queuedTracks() === 1);
        compare(tile(0).albumTitle, "Dropped");
    }

    function test_addingAsksForFiles() {
        mouseClick(findChild(root.page, "addMusicButton"));
        compare(root.bench.questions(), 1);
    }

    function test_largeTextIsNotCut_data() {
        return [{ tag: "usual", scale: 1, wide: 800 }, { tag: "usual, narrow", scale: 1, wide: 558 },
            { tag: "150 %", scale: 1.5, wide: 800 }, { tag: "150 %, narrow", scale: 1.5, wide: 516 }];
    }
    function test_largeTextIsNotCut(data) {
        fill(2);
        DesktopScheme.textScale = data.scale;
        root.page.anchors.fill = undefined;
        root.page.width = data.wide;
        root.page.height = 500;
        waitForRendering(root.page);
        const hint = findChild(root.page, "searchField").placeholderText; // may end in an ellipsis
        const cut = root.bench.clippedTexts(root.page).filter(text => text !== hint);
        DesktopScheme.textScale = 1;
        compare(cut, []);
    }
}
