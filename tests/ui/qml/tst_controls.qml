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
    Item {
        visible: false

        Button {
            id: hiddenButton
            text: button.text
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

    function test_eachTellsWhatItIsAndActsOnKeys() {
        const press = [Qt.Key_Space, Qt.Key_Return];
        for (const [control, name, role, keys, acts] of [[button, "Zapisz", Accessible.Button, press, "clicked"],
            [iconButton, "Odśwież", Accessible.Button, press, "clicked"],
            [check, "Hi-Res", Accessible.CheckBox, press, "toggled"],
            [segments, "Format", Accessible.Grouping, [], "picked"],
            [combo, "Sortuj", Accessible.ComboBox, [Qt.Key_Down], "picked"],
            [search, "Szukaj", Accessible.EditableText, [], "accepted"],
            [slider, "Rozmiar", Accessible.Slider, [Qt.Key_Right], "moved"]]) {
            compare(control.Accessible.name, name);
            // Templates give their roles once assistive technology is there.
            verify([0, role].includes(control.Accessible.role), name);
            listen(control, acts);
            for (const key of keys) {
                for (const reason of [Qt.MouseFocusReason, Qt.TabFocusReason]) {
                    control.focus = false;
                    control.forceActiveFocus(reason);
                    compare(ringIn(control), reason === Qt.TabFocusReason, name);
                }
                keyClick(key);
            }
            compare(spy.count, keys.length, name);
            control.enabled = false;
            compare(control.opacity, Tokens.color.disabled, name);
            keys.forEach(key => keyClick(key));
            compare(spy.count, keys.length, name);
            control.enabled = true;
            compare(control.opacity, 1, name);
            control.focus = false;
        }
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
        for (const [key, change, back] of [["enabled", Qt.TabFocusReason, true], ["enabled", Qt.MouseFocusReason, true],
            ["visible", Qt.TabFocusReason, false], ["enabled", Qt.TabFocusReason, false]]) {
            button.forceActiveFocus();
            change === Qt.MouseFocusReason ? mouseClick(check) : check.forceActiveFocus(change);
            wait(0);
            check[key] = false;
            tryVerify(() => below(segments).some(item => item.activeFocus));
            compare(ringIn(segments), change === Qt.TabFocusReason);
            if (!back) {
                keyClick(Qt.Key_Shift); // whoever has gone on stays there
            }
            check[key] = true;
            wait(50);
            compare(check.activeFocus, back);
            compare(ringIn(check), back && change === Qt.TabFocusReason);
        }
    }

    function test_whatIsHiddenHasItsSize() {
        compare(hiddenButton.implicitWidth, button.implicitWidth);
    }

    function test_whatIsCutIsToldByAHint() {
        const flac = below(segments).find(item => item.text === "FLAC");
        for (const [control, text] of [[button, "Zapisz"], [combo, combo.displayText], [flac, "FLAC"]]) {
            const width = control.width;
            control.hoverEnabled = true; // is off on some platforms
            for (const narrow of [false, true]) {
                control.width = narrow ? 20 : width;
                mouseMove(root, root.width - 1, root.height - 1);
                mouseMove(control, 5, 5);
                compare(Hints.target, narrow ? control : null, text);
            }
            compare(Hints.text, text);
            control.width = width;
        }
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

    function test_aMouseAtRestLeavesTheKeyboardsChoice() {
        combo.values = Array.from({ length: 40 }, (_, i) => "Wartość " + i);
        combo.value = "Wartość 0";
        combo.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        tryCompare(combo.popup, "opened", true);
        const list = combo.popup.contentItem;
        for (const y of [99, 100, 101]) {
            mouseMove(list, 50, y);
        }
        tryCompare(combo, "highlightedIndex", 3);
        for (const [key, index] of [[Qt.Key_End, 39], [Qt.Key_Up, 38], [Qt.Key_Home, 0], [Qt.Key_End, 39]]) {
            keyClick(key);
            wait(50); // the rows move below the mouse
            compare(combo.highlightedIndex, index);
        }
        mouseMove(list, 50, 25);
        mouseMove(list, 50, 60);
        tryVerify(() => combo.highlightedIndex < 39);
        keyClick(Qt.Key_Escape);
        tryCompare(combo.popup, "visible", false);
        combo.values = ["Album", "Rok", "Rozmiar", "Tytuł"];
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
        alert.message = "Nie udało się."; // while it is open, the one before can have the focus again
        tryCompare(alert, "opened", true);
        button.enabled = true;
        keyClick(Qt.Key_Escape);
        tryVerify(() => button.activeFocus && ringIn(button));
    }
}
