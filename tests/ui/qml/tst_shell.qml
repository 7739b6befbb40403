// The window's frame: sections by keyboard, the transfer bar, the inspector, and large text in all of them.
import QtQuick
import QtTest
import Marlune
import MarluneTest

TestCase {
    id: root
    name: "Shell"
    when: windowShown
    width: 900
    height: 700
    visible: true

    Component {
        id: benchComponent
        Bench {}
    }
    Component {
        id: sidebarComponent
        Sidebar {
            height: root.height
        }
    }
    Component {
        id: barComponent
        TransferBar {
            width: 768
        }
    }
    Component {
        id: inspectorComponent
        Inspector {
            width: 285
            height: root.height
        }
    }

    Component {
        id: panelsComponent
        PanelHost {}
    }

    property Bench bench
    property var made: []

    function init() {
        failOnWarning(/.?/);
        root.bench = createTemporaryObject(benchComponent, root);
    }
    function make(component, properties) {
        const item = component.createObject(root, properties);
        root.made.push(item);
        waitForRendering(item);
        return item;
    }
    function cleanup() { // before the Bench that they show
        root.made.forEach(item => item.destroy());
        root.made = [];
        wait(0);
    }
    function below(item) {
        let found = [];
        for (let i = 0; i < item.children.length; ++i) {
            found = found.concat([item.children[i]], below(item.children[i]));
        }
        return found;
    }

    function test_sectionsAreOneStopAndArrowsOpenThem() {
        const sidebar = make(sidebarComponent, { sections: root.bench.shell.sections });
        const rows = below(sidebar).filter(item => item instanceof SidebarRow);
        compare(rows.length, 7);
        compare(rows.filter(row => row.activeFocusOnTab).length, 1);
        compare(root.bench.model.section, "Muzyka");
        rows[1].forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(root.bench.model.section, "Playlisty");
        verify(rows[2].activeFocus && rows[2].current && !rows[1].current);
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_Up);
        compare(root.bench.model.section, "Twój iPod");
        verify(!root.bench.shell.inspectorShown);
        mouseClick(rows[6]);
        compare(root.bench.model.section, "Poradnik");
        verify(root.bench.shell.inspectorShown);
        compare(rows[6].Accessible.name, "Poradnik");
    }

    function test_transferBarOffersWhatCanBeDone() {
        const bar = make(barComponent, { model: root.bench.model, shell: root.bench.shell });
        verify(!findChild(bar, "transferButton").enabled);
        verify(!findChild(bar, "clearQueueButton").enabled);
        verify(!findChild(bar, "workProgress").visible);
        compare(findChild(bar, "statusText").text, "Gotowy na Twoją muzykę");
        root.bench.addAlbum("Wykonawca", "Album");
        root.bench.library.albums.toggle(0);
        tryVerify(() => findChild(bar, "clearQueueButton").enabled);
        verify(!findChild(bar, "transferButton").enabled);
        root.bench.connectDevice("IPOD", true);
        tryVerify(() => findChild(bar, "transferButton").enabled);
        mouseClick(findChild(bar, "clearQueueButton"));
        compare(root.bench.queuedTracks(), 0);
    }

    function test_inspectorShowsTheDevice() {
        const inspector = make(inspectorComponent, { model: root.bench.model, shell: root.bench.shell });
        verify(findChild(inspector, "connectHint").visible);
        compare(findChild(inspector, "connectionText").text, "Czeka na połączenie");
        root.bench.connectDevice("TEST", false);
        tryCompare(findChild(inspector, "deviceName"), "text", "TEST");
        verify(findChild(inspector, "testFolder").visible);
        verify(!findChild(inspector, "connectHint").visible);
        verify(!findChild(inspector, "ejectButton").enabled);
        root.bench.connectDevice("IPOD", true);
        tryVerify(() => findChild(inspector, "ejectButton").enabled);
        verify(!findChild(inspector, "testFolder").visible);
        compare(findChild(inspector, "themeCount").text, "0 zainstalowanych motywów");
        mouseClick(findChild(inspector, "chooseDeviceButton"));
        compare(root.bench.questions(), 1);
        mouseClick(findChild(inspector, "browseThemesButton"));
        compare(root.bench.model.section, "Motywy");
    }

    function test_filesOrFoldersIsAskedFirst() {
        const host = make(panelsComponent, { panels: root.bench.panels });
        root.bench.ask(true, true);
        const button = findChild(host, "chooseFolderButton");
        tryVerify(() => button.visible && button.activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(host, "chooseFilesButton").activeFocus);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !button.visible);
        root.bench.panels.answer(["file:///music"]);
        compare(root.bench.answers(), 0, "a cancelled question was answered");

        root.bench.ask(true, true);
        tryVerify(() => button.visible && button.activeFocus);
        keyClick(Qt.Key_Return);
        tryVerify(() => !button.visible);
        root.bench.panels.answer(["file:///music"]);
        compare(root.bench.answers(), 1);
    }

    function test_largeTextIsNotCut_data() {
        return [{ tag: "usual", scale: 1 }, { tag: "150 %", scale: 1.5 }];
    }
    function test_largeTextIsNotCut(data) {
        root.bench.connectDevice("IPOD", false);
        DesktopScheme.textScale = data.scale;
        const parts = [make(sidebarComponent, { sections: root.bench.shell.sections }),
            make(barComponent, { model: root.bench.model, shell: root.bench.shell, width: 516 }),
            make(inspectorComponent, { model: root.bench.model, shell: root.bench.shell })];
        const cut = [];
        for (const part of parts) {
            cut.push(...root.bench.clippedTexts(part));
        }
        DesktopScheme.textScale = 1;
        compare(cut, []);
    }
}
