// The guide: the handbook's two documents, its links and its search, and the gallery of models.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Guide"
    width: 800
    height: 700

    Component {
        id: pageComponent
        GuidePage {
            width: 800
            height: 700
        }
    }

    property GuidePage page

    function init() {
        failOnWarning(/.?/);
        root.page = make(pageComponent, {});
    }
    function part(name) {
        return findChild(root.page, name);
    }
    /// A heading or a link.
    function words(...texts) {
        return below(part("handbook").contentItem).find(item => item instanceof HandbookPart && texts.includes(item.text)
            && item.isLink === (texts.length === 1));
    }

    function test_staysInTheSectionThroughLanguageAndLooks() {
        const view = part("handbook");
        const text = part("handbookText");
        const polish = text.length;
        const pages = below(part("guidePages")).filter(item => item instanceof Segment);
        for (const [segment, shown] of [[pages[1], false], [pages[0], true]]) {
            mouseClick(segment);
            compare(view.visible, shown);
        }
        verify(polish > 10000 && view.contentY === -view.topMargin);
        mouseClick(part("handbookLanguage")); // at the top the page stays as it is
        verify(text.length !== polish && view.contentY === -view.topMargin);
        mouseClick(part("handbookLanguage"));
        compare(text.length, polish);
        words("Dźwięk").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        const heading = () => words("Dźwięk", "Sound").y - view.contentY;
        const landed = heading();
        verify(landed > view.covered && landed < view.covered + 30);
        wait(100); // frames in which the focus is followed
        compare(heading(), landed);
        keyClick(Qt.Key_Tab);
        verify(words("ustawienia dźwięku").activeFocus);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_PageDown);
        verify(heading() < -300);
        mouseClick(part("handbookLanguage"));
        const share = heading();
        verify(share < -200 && share > -900);
        DesktopScheme.dark = true;
        fuzzyCompare(heading(), share, 1);
        DesktopScheme.dark = false;
        DesktopScheme.textScale = 1.5;
        tryVerify(() => heading() < 1.3 * share && heading() > 4 * share);
        wait(50);
        keyClick(Qt.Key_Home);
        compare(view.contentY, -view.topMargin);
    }

    function test_finds() {
        const view = part("handbook");
        const count = part("findCount");
        keyClick(Qt.Key_F, Qt.ControlModifier);
        const field = part("findField");
        verify(field.activeFocus);
        for (const letter of ["*", "p", "a", "n"]) {
            keyClick(letter);
        }
        compare(count.text, "Wynik 1 z 1"); // it is "*PANIC*" there
        verify(view.contentY > 0);
        field.text = "flac";
        verify(/^Wynik \d+ z \d\d?$/.test(count.text), count.text);
        const all = Number(count.text.split(" ")[3]);
        compare(part("handbookText").getText(0, 1e6).toLowerCase().split("flac").length - 1, all);
        const first = Number(count.text.split(" ")[1]);
        keyClick(Qt.Key_Return);
        compare(count.text, "Wynik " + (first % all + 1) + " z " + all);
        keyClick(Qt.Key_Return, Qt.ShiftModifier);
        compare(count.text, "Wynik " + first + " z " + all);
        field.text = "xyzzy";
        compare(count.text, "Brak wyników");
        keyClick(Qt.Key_Escape);
        verify(!part("findBar").visible);
        root.page.page = "Modele";
        keyClick(Qt.Key_F, Qt.ControlModifier);
        verify(!part("findBar").visible);
        compare(part("modelGallery").count, 32);
    }
}
