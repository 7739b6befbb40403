// The themes page over a real model: its states, its keyboard, its menu, and large text.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Themes"
    width: 800
    height: 700

    Component {
        id: pageComponent
        ThemesPage {
            width: 800
            height: 700
        }
    }

    property ThemesPage page

    function part(name) {
        return findChild(root.page, name);
    }
    function tile(row) {
        tryVerify(() => part("themeGrid").itemAtIndex(row) !== null);
        return part("themeGrid").itemAtIndex(row);
    }
    function open(names) {
        root.page = make(pageComponent, { model: root.bench.model, themes: root.bench.themes });
        verify(part("themesWithoutDevice").visible && !part("importThemeButton").enabled);
        verify(!part("fetchPreviewsButton").enabled && part("catalogueLink").enabled);
        for (const name of names) {
            root.bench.write("IPOD/.rockbox/themes/" + name + ".cfg", "font: a.fnt");
        }
        root.bench.connectDevice("IPOD", true);
        tryVerify(() => part("themeGrid").count >= names.length);
        verify(!part("themesWithoutDevice").visible && part("importThemeButton").enabled);
        verify(part("fetchPreviewsButton").enabled);
    }

    function test_theGalleryIsWalkedByKeyboard() {
        open(["Amber", "Night a", "Night b", "Żar"]);
        const name = () => part("themeGrid").currentItem.name;
        tile(0).forceActiveFocus(Qt.TabFocusReason);
        for (const [keys, expected] of [[[Qt.Key_End], "Żar"], [[Qt.Key_Home], "Amber"], [[Qt.Key_Right], "Night a"],
                [["n", "i", "g", "h", "t", Qt.Key_Space, "b"], "Night b"]]) {
            keys.forEach(key => keyClick(key));
            compare(name(), expected);
            tryVerify(() => part("themeGrid").currentItem.visualFocus);
        }
        verify(!root.bench.themeSheet.wanted);
        keyClick("z", Qt.AltModifier);
        compare(name(), "Night b");
        compare(menuEntries(part("themeGrid").currentItem),
            ["Szczegóły i podgląd", "Dodaj własny zrzut…", "Plik w Finderze"]);
        for (const key of [Qt.Key_Home, Qt.Key_Space]) {
            keyClick(key); // which ends what was typed
        }
        compare(root.bench.themeSheet.name, "Amber");
        root.bench.themeSheet.dismiss();
        tile(1).forceActiveFocus(Qt.TabFocusReason);
        root.bench.disconnectDevice();
        tryVerify(() => part("themesWithoutDevice").visible);
    }

    function test_largeTextIsNotCut() {
        open(["Amber", "Night"]);
        root.page.height = 500;
        for (const [scale, wide] of root.textSizes) {
            DesktopScheme.textScale = scale;
            root.page.width = wide;
            waitForRendering(root.page);
            compare(root.bench.clippedTexts(root.page), [], String([scale, wide]));
        }
    }
}
