// The sheet about an album: its tracks by keyboard, its cover at full size, and the search above it.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Album"
    width: 1050
    height: 690

    Component {
        id: sheetComponent
        AlbumDetailView {}
    }

    property AlbumDetailView sheet: null

    function part(name) {
        return findChild(root.sheet.contentItem, name);
    }
    function open(discs, tracks) {
        root.bench.addDiscs("Long <b>\n" + "title ".repeat(2000), discs, tracks);
        root.sheet = sheetComponent.createObject(root, { album: root.bench.albumSheet });
        root.made.push(root.sheet);
        root.bench.openAlbum();
        tryVerify(() => root.sheet.opened);
        wait(50);
    }

    function test_tracksAreWalkedByKeyboardAndKeepTheirPlace() {
        open(40, 5);
        const list = part("trackList");
        compare(list.count, 240);
        verify(below(list.contentItem).filter(item => item instanceof DiscTrackRow).length < 60);
        const current = () => list.currentItem;
        compare(list.contentY, list.originY - list.topMargin); // the album's names are in sight
        compare(list.currentIndex, 1); // no disc's line
        current().forceActiveFocus(Qt.TabFocusReason);
        for (const [key, row] of [[Qt.Key_Up, 1], [Qt.Key_Down, 2], [Qt.Key_End, 239], [Qt.Key_Up, 238], [Qt.Key_Home, 1],
                [Qt.Key_Down, 2], [Qt.Key_Down, 3], [Qt.Key_Down, 4], [Qt.Key_Down, 5], [Qt.Key_Down, 7], [Qt.Key_Up, 5]]) {
            keyClick(key);
            compare(list.currentIndex, row);
            verify(current().visualFocus);
        }
        keyClick(Qt.Key_PageDown);
        keyClick(Qt.Key_PageDown);
        verify(list.currentIndex > 12);
        const row = list.currentIndex;
        tryVerify(() => current().y >= list.contentY && current().y + current().height <= list.contentY + list.height);
        const place = list.contentY;
        keyClick(Qt.Key_Space);
        compare(root.bench.queuedTracks(), 1);
        tryVerify(() => current().queued);
        mouseClick(findChild(current(), "queueButton"));
        compare(root.bench.queuedTracks(), 0);
        for (const [key, modifier] of [[Qt.Key_Menu, Qt.NoModifier], [Qt.Key_F10, Qt.ShiftModifier]]) {
            keyClick(key, modifier);
            tryVerify(() => !current().activeFocus); // but the menu
            keyClick(Qt.Key_Escape);
            tryVerify(() => current().visualFocus && root.sheet.opened);
        }
        root.bench.albumSheet.chooseCover(true);
        tryVerify(() => !root.bench.model.busy);
        wait(50);
        compare([list.currentIndex, list.contentY], [row, place]);
        root.bench.forgetAlbum();
        tryVerify(() => part("albumGone").visible && !part("albumColumns").visible);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !root.sheet.visible && !root.bench.albumSheet.wanted);
    }

    function test_aCoverIsSeenLargeAndASearchIsAbove() {
        open(1, 2);
        const viewer = root.sheet.viewer;
        const search = root.sheet.searchSheet;
        compare(part("trackList").count, 2); // a single disc has no line
        verify(!part("transferAlbumButton").enabled);
        part("coverButton").forceActiveFocus(Qt.TabFocusReason);
        for (const close of [() => keyClick(Qt.Key_Escape), () => mouseClick(viewer.contentItem, 5, 5)]) {
            keyClick(Qt.Key_Return);
            tryVerify(() => viewer.opened);
            const picture = findChild(viewer.contentItem, "wholeCover");
            tryCompare(picture, "status", Image.Ready);
            verify(picture.width > 0 && picture.height <= viewer.height && findChild(viewer.contentItem, "coverCaption").text !== "");
            close();
            tryVerify(() => !viewer.visible && part("coverButton").activeFocus && root.sheet.opened);
        }
        const find = part("findCoverButton");
        find.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryVerify(() => search.opened && findChild(search.contentItem, "searchButton").activeFocus);
        const field = findChild(findChild(search.contentItem, "albumField"), "field");
        field.forceActiveFocus(Qt.TabFocusReason);
        field.selectAll();
        keyClick(Qt.Key_Space);
        keyClick(Qt.Key_Return); // which asks, and learns that there is nothing to ask for
        tryCompare(findChild(search.contentItem, "searchState"), "title", "Podaj wykonawcę i tytuł albumu.");
        field.text = "T";
        field.textEdited();
        keyClick(Qt.Key_Return);
        const list = findChild(search.contentItem, "resultList");
        tryCompare(list, "count", 2);
        tryVerify(() => list.currentItem !== null);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !search.visible && root.sheet.opened && find.activeFocus);
        compare(list.count, 0);

        keyClick(Qt.Key_Space);
        tryVerify(() => search.opened);
        keyClick(Qt.Key_Space);
        tryVerify(() => list.count === 2 && list.currentItem !== null);
        findChild(search.contentItem, "searchButton").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        tryVerify(() => list.currentItem.visualFocus);
        keyClick(Qt.Key_Down);
        verify(list.currentIndex === 1 && list.currentItem.visualFocus);
        tryVerify(() => list.currentItem.picture !== "");
        const before = root.bench.albumSheet.cover;
        keyClick(Qt.Key_Tab);
        verify(findChild(list.currentItem, "downloadButton").activeFocus);
        keyClick(Qt.Key_Return);
        tryVerify(() => !search.visible && find.activeFocus);
        tryVerify(() => root.bench.albumSheet.cover !== before && part("coverSourceButton").visible);
    }

    function test_largeTextIsNotCut() {
        root.bench.addAlbum("Artist", "Album");
        root.sheet = sheetComponent.createObject(root, { album: root.bench.albumSheet });
        root.made.push(root.sheet);
        root.bench.openAlbum();
        root.bench.albumSheet.findCover();
        for (const scale of [1, 1.5]) {
            DesktopScheme.textScale = scale;
            tryVerify(() => root.sheet.searchSheet.opened);
            waitForRendering(root.sheet.contentItem);
            compare(root.bench.clippedTexts(root.sheet.contentItem), []);
            compare(root.bench.clippedTexts(root.sheet.searchSheet.contentItem), []);
            verify(root.sheet.height <= root.Window.window.height
                && root.sheet.searchSheet.height <= root.Window.window.height);
        }
    }
}
