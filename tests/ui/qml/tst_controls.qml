// Each control by keyboard, and what it tells those who do not see it.
import QtQuick
import QtTest
import Marlune

TestCase {
    id: root
    name: "Controls"
    when: windowShown
    width: 600
    height: 400
    visible: true

    Component {
        id: buttonComponent
        Button {
            text: "Zapisz"
        }
    }
    Component {
        id: iconButtonComponent
        Button {
            symbol: "arrow.clockwise"
            toolTip: "Odśwież"
        }
    }
    Component {
        id: checkComponent
        CheckBox {
            text: "Hi-Res"
        }
    }
    Component {
        id: segmentsComponent
        SegmentedPicker {
            title: "Format"
            values: ["FLAC", "MP3", "AAC"]
            value: "MP3"
            onPicked: chosen => value = chosen
        }
    }
    Component {
        id: comboComponent
        ComboPicker {
            title: "Sortuj"
            values: ["Album", "Rok", "Rozmiar"]
            value: "Rok"
            onPicked: chosen => value = chosen
        }
    }
    Component {
        id: searchComponent
        SearchField {
            placeholderText: "Szukaj"
        }
    }
    Component {
        id: sliderComponent
        TileSlider {
            from: 140
            to: 240
            stepSize: 5
            value: 170
            toolTip: "Rozmiar"
        }
    }
    Component {
        id: alertComponent
        AlertDialog {}
    }
    Component {
        id: spyComponent
        SignalSpy {}
    }

    function initTestCase() {
        // Shown is not active yet: on a slow machine keys would go nowhere.
        tryVerify(() => root.Window.active, 10000, "the window is not active");
    }
    function init() {
        failOnWarning(/.?/);
    }
    function spy(target, signalName) {
        return createTemporaryObject(spyComponent, root, { target: target, signalName: signalName });
    }
    function below(item) {
        let found = [];
        for (let i = 0; i < item.children.length; ++i) {
            found = found.concat([item.children[i]], below(item.children[i]));
        }
        return found;
    }
    function ringIn(item) {
        return below(item).some(child => child.objectName === "focusRing" && child.visible);
    }

    function test_hasANameAndRoleAndFades_data() {
        return [
            { tag: "button", component: buttonComponent, name: "Zapisz", role: Accessible.Button },
            { tag: "button with a symbol alone", component: iconButtonComponent, name: "Odśwież", role: Accessible.Button },
            { tag: "check box", component: checkComponent, name: "Hi-Res", role: Accessible.CheckBox },
            { tag: "segmented picker", component: segmentsComponent, name: "Format", role: Accessible.Grouping },
            { tag: "combo picker", component: comboComponent, name: "Sortuj", role: Accessible.ComboBox },
            { tag: "search field", component: searchComponent, name: "Szukaj", role: Accessible.EditableText },
            { tag: "slider", component: sliderComponent, name: "Rozmiar", role: Accessible.Slider }
        ];
    }
    function test_hasANameAndRoleAndFades(data) {
        const control = createTemporaryObject(data.component, root);
        compare(control.Accessible.name, data.name);
        if (control.Accessible.role !== 0) { // templates give theirs once assistive technology is there
            compare(control.Accessible.role, data.role);
        }
        compare(control.opacity, 1);
        control.enabled = false;
        compare(control.opacity, Tokens.color.disabled);
        verify(control.implicitHeight >= 24);
        verify(control.implicitWidth > 0);
    }

    function test_keysAct_data() {
        return [
            { tag: "button, Space", component: buttonComponent, key: Qt.Key_Space, signalName: "clicked" },
            { tag: "button, Return", component: buttonComponent, key: Qt.Key_Return, signalName: "clicked" },
            { tag: "check box, Space", component: checkComponent, key: Qt.Key_Space, signalName: "toggled" },
            { tag: "check box, Return", component: checkComponent, key: Qt.Key_Return, signalName: "toggled" },
            { tag: "slider, Right", component: sliderComponent, key: Qt.Key_Right, signalName: "moved" },
            { tag: "combo picker, Down", component: comboComponent, key: Qt.Key_Down, signalName: "picked" }
        ];
    }
    function test_keysAct(data) {
        const control = createTemporaryObject(data.component, root);
        const acted = spy(control, data.signalName);
        control.forceActiveFocus(Qt.MouseFocusReason);
        verify(!ringIn(control), "a ring after a click");
        control.focus = false;
        control.forceActiveFocus(Qt.TabFocusReason);
        verify(ringIn(control), "no ring for the keyboard");
        keyClick(data.key);
        compare(acted.count, 1);
        control.enabled = false;
        keyClick(data.key);
        compare(acted.count, 1);
    }

    function test_segmentsAreOneStopAndArrowsChoose() {
        const picker = createTemporaryObject(segmentsComponent, root);
        const before = createTemporaryObject(buttonComponent, root, { y: -100 });
        const picked = spy(picker, "picked");
        before.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        compare(below(picker).find(item => item.activeFocus).text, "MP3");
        keyClick(Qt.Key_Right);
        compare(picker.value, "AAC");
        keyClick(Qt.Key_Right);
        compare(picked.count, 1);
        keyClick(Qt.Key_Left);
        keyClick(Qt.Key_Left);
        compare(picker.value, "FLAC");
        keyClick(Qt.Key_Left);
        compare(picked.count, 3);
        verify(ringIn(picker));
        keyClick(Qt.Key_Tab);
        verify(!below(picker).some(item => item.activeFocus), "one stop");
        mouseClick(picker, picker.width - 5, picker.height / 2);
        compare(picker.value, "AAC");
    }

    function test_segmentsGiveUpMarginsBeforeTexts() {
        const picker = createTemporaryObject(segmentsComponent, root);
        verify(picker.minimumWidth < picker.implicitWidth);
        picker.width = picker.minimumWidth;
        waitForRendering(picker);
        const texts = below(picker).filter(item => item instanceof Text);
        compare(texts.length, 3);
        for (const text of texts) {
            verify(!text.truncated, text.text);
        }
    }

    function test_searchIsEmptiedByEscapeAndByItsCross() {
        const field = createTemporaryObject(searchComponent, root, { width: 300 });
        for (const empty of [() => keyClick(Qt.Key_Escape), () => mouseClick(field, field.width - 12, field.height / 2)]) {
            field.forceActiveFocus();
            keyClick("a");
            keyClick("b");
            compare(field.text, "ab");
            waitForRendering(field);
            empty();
            compare(field.text, "");
            verify(field.activeFocus);
        }
    }

    function test_comboOpensChoosesAndClosesByKeyboard() {
        const combo = createTemporaryObject(comboComponent, root);
        combo.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        tryCompare(combo.popup, "opened", true);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(combo.value, "Rozmiar");
        tryCompare(combo.popup, "visible", false);
        keyClick(Qt.Key_Space);
        tryCompare(combo.popup, "opened", true);
        keyClick(Qt.Key_Escape);
        tryCompare(combo.popup, "visible", false);
        compare(combo.value, "Rozmiar");
    }

    function test_alertIsLeftByEachWayAndGivesTheFocusBack_data() {
        return [
            { tag: "Escape", key: Qt.Key_Escape },
            { tag: "Return", key: Qt.Key_Return },
            { tag: "Space", key: Qt.Key_Space }
        ];
    }
    function test_alertIsLeftByEachWayAndGivesTheFocusBack(data) {
        const button = createTemporaryObject(buttonComponent, root);
        button.forceActiveFocus(Qt.TabFocusReason);
        verify(ringIn(button));
        const alert = createTemporaryObject(alertComponent, root);
        const dismissed = spy(alert, "dismissed");
        verify(!alert.visible);
        alert.message = "Nie udało się.";
        tryCompare(alert, "opened", true);
        verify(!button.activeFocus);
        keyClick(data.key);
        tryCompare(dismissed, "count", 1);
        alert.message = "";
        tryCompare(alert, "visible", false);
        compare(dismissed.count, 1);
        verify(button.activeFocus && ringIn(button));
    }

    function test_alertTakenBackIsNotDismissed() {
        const alert = createTemporaryObject(alertComponent, root, { message: "Chwila." });
        const dismissed = spy(alert, "dismissed");
        tryCompare(alert, "opened", true);
        alert.message = "";
        tryCompare(alert, "visible", false);
        compare(dismissed.count, 0);
    }
}
