// Each control by keyboard, and what it tells those who do not see it.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Controls"
    width: 600
    height: 400

    Column {
        Button {
            id: button
            text: "Zapisz"
        }
        Button {
            id: iconButton
            symbol: "arrow.clockwise"
            toolTip: "Odśwież"
        }
        CheckBox {
            id: check
            text: "Hi-Res"
        }
        SegmentedPicker {
            id: segments
            title: "Format"
            values: ["FLAC", "MP3", "AAC"]
            value: "MP3"
            onPicked: chosen => value = chosen
        }
        ComboPicker {
            id: combo
            title: "Sortuj"
            values: ["Album", "Rok", "Rozmiar", "Tytuł"]
            value: "Album"
            onPicked: chosen => value = chosen
        }
        SearchField {
            id: search
            width: 300
            placeholderText: "Szukaj"
        }
        Slider {
            id: slider
            from: 140
            to: 240
            stepSize: 5
            value: 170
            toolTip: "Rozmiar"
        }
    }
    AlertDialog {
        id: alert
    }
    SignalSpy {
        id: spy
    }

    function initTestCase() {
        // Shown is not active yet: on a slow machine keys would go nowhere.
        tryVerify(() => root.Window.active, 10000, "the window is not active");
    }
    function listen(target, signalName) {
        spy.signalName = "";
        spy.target = target;
        spy.signalName = signalName;
        spy.clear();
    }
    function ringIn(item) {
        return below(item).some(child => child.objectName === "focusRing" && child.visible);
    }

    function test_eachTellsWhatItIsAndActsOnKeys_data() {
        const press = [Qt.Key_Space, Qt.Key_Return];
        return [
            { tag: "button", control: button, name: "Zapisz", role: Accessible.Button, keys: press, acts: "clicked" },
            { tag: "symbol", control: iconButton, name: "Odśwież", role: Accessible.Button, keys: press, acts: "clicked" },
            { tag: "check box", control: check, name: "Hi-Res", role: Accessible.CheckBox, keys: press, acts: "toggled" },
            { tag: "segments", control: segments, name: "Format", role: Accessible.Grouping, keys: [], acts: "picked" },
            { tag: "combo", control: combo, name: "Sortuj", role: Accessible.ComboBox, keys: [Qt.Key_Down], acts: "picked" },
            { tag: "search", control: search, name: "Szukaj", role: Accessible.EditableText, keys: [], acts: "accepted" },
            { tag: "slider", control: slider, name: "Rozmiar", role: Accessible.Slider, keys: [Qt.Key_Right], acts: "moved" }
        ];
    }
    function test_eachTellsWhatItIsAndActsOnKeys(data) {
        const control = data.control;
        const role = control.Accessible.role;
        compare(control.Accessible.name, data.name);
        verify(role === 0 || role === data.role); // templates give theirs once assistive technology is there
        listen(control, data.acts);
        for (const key of data.keys) {
            for (const reason of [Qt.MouseFocusReason, Qt.TabFocusReason]) {
                control.focus = false;
                control.forceActiveFocus(reason);
                compare(ringIn(control), reason === Qt.TabFocusReason);
            }
            keyClick(key);
        }
        compare(spy.count, data.keys.length);
        control.enabled = false;
        compare(control.opacity, Tokens.color.disabled);
        data.keys.forEach(key => keyClick(key));
        compare(spy.count, data.keys.length);
        control.enabled = true;
        compare(control.opacity, 1);
        control.focus = false;
    }

    function test_segmentsAreOneStopAndArrowsChoose() {
        listen(segments, "picked");
        check.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        compare(below(segments).find(item => item.activeFocus).text, "MP3");
        const steps = [[Qt.Key_Right, "AAC", 1], [Qt.Key_Right, "AAC", 1], [Qt.Key_Left, "MP3", 2],
            [Qt.Key_Left, "FLAC", 3], [Qt.Key_Left, "FLAC", 3]];
        for (const [key, value, count] of steps) {
            keyClick(key);
            compare(segments.value, value);
            compare(spy.count, count);
        }
        verify(ringIn(segments));
        keyClick(Qt.Key_Tab);
        verify(combo.activeFocus, "one stop");
        mouseClick(segments, segments.width - 5, segments.height / 2);
        compare(segments.value, "AAC");
    }

    function test_theFocusIsHandedOnByWhatIsDisabledOrHidden() {
        for (const [key, change] of [["enabled", Qt.TabFocusReason], ["visible", Qt.TabFocusReason], ["enabled", Qt.MouseFocusReason]]) {
            check.forceActiveFocus(change);
            wait(0);
            check[key] = false;
            tryVerify(() => below(segments).some(item => item.activeFocus));
            compare(ringIn(segments), change === Qt.TabFocusReason);
            check[key] = true;
        }
    }

    function test_whatIsCutIsToldByAHint_data() {
        return [{ tag: "button", control: button, text: "Zapisz" }, { tag: "picker", control: combo, text: combo.displayText },
            { tag: "segment", control: below(segments).find(item => item.text === "FLAC"), text: "FLAC" }];
    }
    function test_whatIsCutIsToldByAHint(data) {
        const width = data.control.width;
        data.control.hoverEnabled = true; // is off on some platforms
        for (const narrow of [false, true]) {
            data.control.width = narrow ? 20 : width;
            mouseMove(root, root.width - 1, root.height - 1);
            mouseMove(data.control, 5, 5);
            compare(Hints.target, narrow ? data.control : null);
        }
        compare(Hints.text, data.text);
        data.control.width = width;
    }

    function test_searchIsEmptiedByEscapeAndByItsCross() {
        for (const empty of [() => keyClick(Qt.Key_Escape), () => mouseClick(search, search.width - 12, search.height / 2)]) {
            search.forceActiveFocus();
            keyClick("a");
            waitForRendering(search);
            empty();
            compare(search.text, "");
            verify(search.activeFocus);
        }
    }

    function test_comboOpensChoosesAndClosesByKeyboard() {
        combo.value = "Rok";
        combo.forceActiveFocus(Qt.TabFocusReason);
        for (const [opening, closing] of [[Qt.Key_Return, Qt.Key_Return], [Qt.Key_Space, Qt.Key_Escape]]) {
            keyClick(opening);
            tryCompare(combo.popup, "opened", true);
            keyClick(Qt.Key_Down);
            keyClick(closing);
            tryCompare(combo.popup, "visible", false);
            compare(combo.value, "Rozmiar");
        }
    }

    function test_alertIsLeftByEachKeyAndGivesTheFocusBack() {
        listen(alert, "dismissed");
        button.forceActiveFocus(Qt.TabFocusReason);
        // The last one is taken back before it is read: that is no dismissal.
        for (const [key, count] of [[Qt.Key_Escape, 1], [Qt.Key_Return, 2], [Qt.Key_Space, 3], [null, 3]]) {
            alert.message = "Nie udało się.";
            tryCompare(alert, "opened", true);
            verify(!button.activeFocus);
            if (key !== null) {
                keyClick(key);
                tryCompare(spy, "count", count);
            }
            button.enabled = key !== null; // what cannot have it back hands it on
            alert.message = "";
            tryCompare(alert, "visible", false);
            compare(spy.count, count);
            const heir = button.enabled ? button : iconButton;
            tryVerify(() => heir.activeFocus && ringIn(heir));
        }
        button.enabled = true;
    }
}
