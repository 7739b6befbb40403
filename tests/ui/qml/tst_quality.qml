// The quality page over a real model: its states, its filter, its keyboard, and large text.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Quality"
    width: 800
    height: 760

    Component {
        id: pageComponent
        QualityPage {
            width: 800
            height: 760
        }
    }

    property QualityPage page

    function open() {
        root.bench.model.section = "Porządek";
        root.page = make(pageComponent, { model: root.bench.model, quality: root.bench.quality });
    }
    function part(name) {
        return findChild(root.page, name);
    }

    function test_saysWhatIsKnownAndWhatIsNot() {
        open();
        const empty = part("noIssues");
        const list = part("issueList");
        compare(empty.title, "Najpierw odczytaj kolekcję");
        mouseClick(part("openMusicButton"));
        compare(root.bench.model.section, "Muzyka");
        root.bench.addAlbum("Wykonawca", "Album"); // without a cover, and its two tracks without titles
        wait(50);
        compare(list.count, 0); // the page is not shown
        root.bench.model.section = "Porządek";
        tryCompare(list, "count", 3);
        verify(!empty.visible);
        const states = [["Tagi", 2, "", ""], ["Duplikaty", 0, "Duplikaty nie zostały jeszcze sprawdzone.", ""],
            ["Pliki", 0, "Brak problemów w tej kategorii", "Dokładne duplikaty wymagają osobnego sprawdzenia."]];
        for (const [filter, count, title, detail] of states) {
            root.bench.quality.filter = filter;
            compare(list.count, count);
            tryCompare(empty, "visible", count === 0);
            verify(count > 0 || (empty.title === title && empty.detail === detail), filter);
        }
        compare(root.bench.quality.counts, ["1", "2", "0", "—"]);
        root.page.width = 480; // the note becomes longer, and what gets the focus meanwhile is at the page's edge
        waitForRendering(root.page);
        root.page.height = part("issueFilter").mapToItem(root.page, 0, part("issueFilter").height + 4).y;
        const button = part("checkDuplicatesButton");
        const place = button.mapToItem(root.page, 0, 0).y;
        const growth = part("noIssues").mapToItem(root.page, 0, 0).y;
        mouseClick(button);
        tryCompare(root.bench.quality, "counts", ["1", "2", "0", "0"]);
        tryVerify(() => part("noIssues").mapToItem(root.page, 0, 0).y > growth);
        wait(50);
        compare(button.mapToItem(root.page, 0, 0).y, place);
        root.page.width = 800;
        root.page.height = 760;
        root.bench.quality.filter = "Duplikaty";
        compare(empty.title, "Brak problemów w tej kategorii");
        for (const [button, said] of [["repairCoversButton", "Brak dostępnych obrazów"], ["findCoversButton", "Dodano okładki: 0."]]) {
            mouseClick(part(button));
            tryVerify(() => root.bench.model.alert.startsWith(said), 5000, button);
        }
        verify(!part("cleanupButton").enabled && !part("qualityReadDevice").enabled);
        root.bench.connectDevice("IPOD", false);
        tryVerify(() => part("cleanupButton").enabled && part("qualityReadDevice").enabled);
        root.bench.model.libraryOnDevice = true;
        tryCompare(empty, "title", "Najpierw odczytaj kolekcję");
    }

    function test_rowsAreWalkedByKeyboard() {
        root.bench.addAlbum("Wykonawca", "Album A");
        root.bench.addAlbum("Wykonawca", "Album B");
        open();
        const list = part("issueList");
        tryCompare(list, "count", 6);
        const top = list.contentY;
        part("issueFilter").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Right); // the head keeps the keyboard while the rows change
        keyClick(Qt.Key_Right);
        tryCompare(list, "count", 4);
        const page = root.page;
        open(); // made anew, as when the language changes
        tryVerify(() => part("issueList").contentY === part("issueList").originY - part("issueList").topMargin);
        root.made.pop().destroy();
        root.page = page;
        tryVerify(() => list.currentItem?.index === 0); // the rows of the filter before are gone
        const stops = [];
        for (let i = 0; i < 2; ++i) {
            keyClick(Qt.Key_Tab);
            stops.push(root.page.Window.activeFocusItem);
        }
        compare(stops, [list.currentItem, findChild(list.currentItem, "openAlbumButton")]);
        keyClick(Qt.Key_Down); // from a button too
        compare(list.currentIndex, 1);
        tryVerify(() => list.currentItem.visualFocus);
        keyClick(Qt.Key_End);
        compare(list.currentIndex, 3);
        verify(list.currentItem.activeFocus);
        tryVerify(() => list.contentY > top);
        keyClick(Qt.Key_Down);
        compare(list.currentIndex, 3);
        keyClick(Qt.Key_PageUp);
        compare(list.currentIndex, 0);
        part("checkDuplicatesButton").forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => part("checkDuplicatesButton").mapToItem(root.page, 0, 0).y > 3); // in sight, with its ring
        // Rows of different heights, of which a list only guesses where the last one is.
        root.bench.addAlbum("Wykonawca", "Album o nazwie, która jest tak długa, że nie mieści się w jednym wierszu. ".repeat(3));
        root.bench.quality.filter = "Wszystko";
        root.page.height = 300;
        tryCompare(list, "count", 9);
        list.currentIndex = 0;
        list.currentItem.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_End);
        tryVerify(() => list.currentIndex === 8 && list.currentItem.mapToItem(root.page, 0, list.currentItem.height).y < 297);
        list.contentY = top;
        mouseWheel(root.page, root.page.width - 4, 200, 0, -120); // over the bar beside the list
        tryVerify(() => list.contentY > top);
    }

    function test_largeTextIsNotCut() {
        root.bench.addAlbum("Wykonawca", "Album");
        for (const [scale, wide] of root.textSizes) {
            DesktopScheme.textScale = scale;
            open();
            root.page.width = wide;
            tryCompare(part("issueList"), "count", 3);
            waitForRendering(root.page);
            compare(root.bench.clippedTexts(root.page), [], String([scale, wide]));
            DesktopScheme.textScale = 2.5 - scale; // while it is shown
            waitForRendering(root.page);
            compare(root.bench.clippedTexts(root.page), [], String(["live", scale, wide]));
        }
    }
}
