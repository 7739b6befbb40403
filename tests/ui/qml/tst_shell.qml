// The window's frame: sections by keyboard, what can be done when, questions for files, and large text.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Shell"
    width: 900
    height: 700

    Component {
        id: sidebarComponent
        Sidebar {
            height: root.height
        }
    }
    Component {
        id: topBarComponent
        TopBar {
            width: root.width
        }
    }
    Component {
        id: barComponent
        TransferBar {}
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
    AlertDialog {
        id: alert
    }

    function test_sectionsAreOneStopAndArrowsOpenThem() {
        const sidebar = make(sidebarComponent, { sections: root.bench.shell.sections });
        const rows = below(sidebar).filter(item => item instanceof SidebarRow);
        compare(rows.length, 7);
        compare(rows.filter(row => row.activeFocusOnTab).length, 1);
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

    function test_altAndF10OpenTheMenus() {
        const bar = make(topBarComponent, { model: root.bench.model, shell: root.bench.shell });
        const refresh = findChild(bar, "refreshButton");
        const title = below(bar).find(item => item instanceof MenuBarItem);
        const underlined = () => below(title).some(item => String(item.text).includes("<u>P</u>"));
        title.hoverEnabled = true; // is off on some platforms
        for (const keys of [["mouse"], ["F10"], ["Alt"], ["Alt", "P"]]) {
            refresh.forceActiveFocus(Qt.TabFocusReason);
            verify(!underlined());
            if (keys[0] === "F10") {
                keyClick(Qt.Key_F10);
            } else if (keys[0] === "mouse") {
                mouseMove(title, 5, 5);
                mouseClick(title, 6, 6);
            } else {
                keyPress(Qt.Key_Alt, Qt.AltModifier);
                verify(underlined());
                if (keys.length > 1) {
                    keyClick(Qt.Key_P, Qt.AltModifier);
                }
                keyRelease(Qt.Key_Alt);
            }
            tryVerify(() => title.menu.opened, 1000, String(keys));
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            tryVerify(() => title.menu.currentIndex === 1, 1000, String(keys));
            keyClick(Qt.Key_Escape);
            tryVerify(() => !title.menu.visible && refresh.visualFocus, 1000, String(keys));
            mouseMove(bar, 300, bar.height - 1);
            tryVerify(() => !title.highlighted, 1000, String(keys));
        }
        alert.message = "To trzeba przeczytać.";
        tryVerify(() => alert.opened);
        keyClick(Qt.Key_F10);
        keyPress(Qt.Key_Alt, Qt.AltModifier);
        verify(!underlined());
        keyRelease(Qt.Key_Alt);
        verify(!title.menu.visible);
        alert.message = "";
        tryVerify(() => !alert.visible);
    }

    function test_onlyADiskIsOfferedToBeEjected() {
        const inspector = make(inspectorComponent, { model: root.bench.model, shell: root.bench.shell });
        verify(findChild(inspector, "connectHint").visible);
        for (const isVolume of [false, true]) {
            root.bench.connectDevice(isVolume ? "IPOD" : "TEST", isVolume);
            tryCompare(findChild(inspector, "deviceName"), "text", isVolume ? "IPOD" : "TEST");
            verify(!findChild(inspector, "connectHint").visible);
            compare(findChild(inspector, "testFolder").visible, !isVolume);
            compare(findChild(inspector, "ejectButton").enabled, isVolume);
        }
        compare(findChild(inspector, "themeCount").text, "0 zainstalowanych motywów");
        mouseClick(findChild(inspector, "browseThemesButton"));
        compare(root.bench.model.section, "Motywy");
    }

    function test_threeQuickClicksAskForTheCarousel() {
        root.bench.connectDevice("IPOD", false);
        const model = root.bench.model;
        const inspector = make(inspectorComponent, { model: model, shell: root.bench.shell });
        const drawing = below(inspector).find(item => item instanceof IPodView);
        const pause = Application.styleHints.mouseDoubleClickInterval + 100;
        for (const [clicks, shown] of [[1, false], [2, false], [3, true]]) {
            for (let click = 0; click < clicks; ++click) {
                mouseClick(drawing);
            }
            compare(model.showCoverFlow, shown);
            wait(shown ? 0 : pause);
        }
        verify(model.libraryOnDevice);
        model.showCoverFlow = false; // its window was closed
        mouseClick(drawing);
        verify(!model.showCoverFlow);
    }

    function test_filesOrFoldersIsAskedFirst() {
        const host = make(panelsComponent, { panels: root.bench.panels });
        const button = findChild(host, "chooseFolderButton");
        for (const [key, answers] of [[Qt.Key_Escape, 0], [Qt.Key_Return, 1]]) {
            root.bench.ask(true, true);
            tryVerify(() => button.visible && button.activeFocus);
            keyClick(Qt.Key_Tab);
            verify(findChild(host, "chooseFilesButton").activeFocus);
            keyClick(Qt.Key_Backtab);
            keyClick(key);
            tryVerify(() => !button.visible);
            root.bench.panels.answer(["file:///music"]);
            compare(root.bench.answers(), answers); // a cancelled question takes none
        }
    }

    function test_largeTextIsNotCut() {
        root.bench.connectDevice("IPOD", false);
        const both = { model: root.bench.model, shell: root.bench.shell };
        const parts = [make(sidebarComponent, { sections: root.bench.shell.sections }),
            make(barComponent, Object.assign({ width: 516 }, both)), make(inspectorComponent, both)];
        for (const scale of [1, 1.5]) {
            DesktopScheme.textScale = scale;
            for (const part of parts) {
                waitForRendering(part);
                compare(root.bench.clippedTexts(part), []);
            }
        }
    }
}
