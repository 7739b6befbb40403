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
    Component {
        id: deviceComponent
        DevicePage {
            width: 845
            height: root.height
        }
    }
    Component {
        id: playlistsComponent
        PlaylistsPage {
            width: root.width
            height: root.height
        }
    }
    Component {
        id: backupsComponent
        BackupsPage {
            height: root.height
        }
    }
    Component {
        id: albumSheetComponent
        AlbumDetailView {}
    }
    Component {
        id: themeSheetComponent
        ThemeDetailView {}
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

    function test_rowsOfFilesAreWalkedByKeyboard() {
        for (let i = 10; i < 60; ++i) {
            root.bench.write("IPOD/Playlists/" + i + "<b>.m3u8", "x");
        }
        root.bench.model.section = "Playlisty";
        const page = make(playlistsComponent, { model: root.bench.model, playlists: root.bench.playlists });
        const list = findChild(page, "fileList");
        verify(findChild(page, "emptyState").visible && !findChild(page, "savePlaylistButton").enabled);
        root.bench.connectDevice("IPOD", false);
        tryCompare(list, "count", 50);
        verify(!findChild(page, "emptyState").visible);
        tryVerify(() => list.currentItem);
        const name = findChild(page, "playlistName");
        name.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        const current = () => list.currentItem;
        verify(current().activeFocus);
        compare(current().Accessible.name, "10<b>");
        tryCompare(current().Accessible, "description", "Utwory: 1");
        keyClick(Qt.Key_Tab);
        verify(findChild(current(), "fileButton").activeFocus);
        compare(findChild(current(), "fileButton").Accessible.name, "Pokaż: 10<b>");
        keyClick(Qt.Key_Backtab);
        for (const [key, row] of [[Qt.Key_Down, 1], [Qt.Key_End, 49], [Qt.Key_Up, 48], [Qt.Key_Home, 0]]) {
            keyClick(key);
            compare(list.currentIndex, row);
            verify(current().visualFocus);
            tryVerify(() => current().y >= list.contentY && current().y + current().height <= list.contentY + list.height);
        }
        keyClick(Qt.Key_PageDown);
        verify(list.currentIndex > 2);
        const place = list.contentY;
        root.bench.write("IPOD/Playlists/99.m3u8", "x");
        root.bench.model.refresh();
        tryCompare(list, "count", 51);
        compare(list.contentY, place);
    }

    function test_sheetsFollowTheirField() {
        root.bench.write("IPOD/.rockbox/themes/Night <i>.cfg", "");
        root.bench.addAlbum("Artist", "Album");
        root.bench.connectDevice("IPOD", true);
        const bar = make(topBarComponent, { model: root.bench.model, shell: root.bench.shell });
        const refresh = findChild(bar, "refreshButton");
        for (const [component, key, open, leave] of [[albumSheetComponent, "album", () => root.bench.openAlbum(), () => root.bench.forgetAlbum()],
                [themeSheetComponent, "theme", () => root.bench.openTheme(), () => root.bench.disconnectDevice()]]) {
            const presenter = root.bench[key + "Sheet"];
            const sheet = component.createObject(root, { [key]: presenter });
            root.made.push(sheet);
            tryVerify(() => !root.bench.model.busy);
            wait(50);
            for (const close of [Qt.Key_Escape, Qt.Key_Space]) { // Space presses the button that has the focus
                refresh.forceActiveFocus(Qt.TabFocusReason);
                open();
                tryVerify(() => sheet.opened);
                keyClick(Qt.Key_F10); // is not for what lies behind
                keyClick(close);
                tryVerify(() => !sheet.visible && !presenter.wanted && refresh.activeFocus);
            }
            open();
            tryVerify(() => sheet.opened);
            const body = findChild(sheet.contentItem, key === "album" ? "coverColumn" : "sheetBody");
            root.Window.window.height = 150;
            tryVerify(() => body.height < body.contentHeight);
            for (const [forth, back] of [[Qt.Key_Down, Qt.Key_Up], [Qt.Key_PageDown, Qt.Key_PageUp]]) {
                tryCompare(body, "contentY", 0);
                keyClick(forth);
                verify(body.contentY > 0 && body.contentY + body.height <= body.contentHeight);
                keyClick(back);
            }
            compare(body.contentY, 0);
            root.Window.window.height = root.height;
            leave();
            tryVerify(() => key === "album" ? findChild(sheet.contentItem, "albumGone").visible : !sheet.visible);
            presenter.dismiss();
            tryVerify(() => !sheet.visible);
        }
    }

    function test_largeTextIsNotCut() {
        root.bench.model.section = "Twój iPod";
        root.bench.connectDevice("IPOD", false);
        const both = { model: root.bench.model, shell: root.bench.shell };
        const parts = [make(sidebarComponent, { sections: root.bench.shell.sections }),
            make(barComponent, Object.assign({ width: 516 }, both)), make(inspectorComponent, both),
            make(deviceComponent, { model: root.bench.model, device: root.bench.device }),
            make(playlistsComponent, { width: 516, model: root.bench.model, playlists: root.bench.playlists }),
            make(backupsComponent, { width: 516, model: root.bench.model, backups: root.bench.backups })];
        for (const scale of [1, 1.5]) {
            DesktopScheme.textScale = scale;
            waitForRendering(parts[0]); // one frame is all parts'
            parts.forEach(part => compare(root.bench.clippedTexts(part), []));
        }
    }
}
