// A test of pages over a real model; each test function has a Bench of its own. What make() makes goes before it.
import QtQuick
import QtTest
import Marlune
import MarluneTest

TestCase {
    id: root
    when: windowShown
    visible: true

    Component {
        id: benchComponent
        Bench {}
    }

    property Bench bench
    readonly property var textSizes: [[1, 800], [1, 558], [1.5, 800], [1.5, 516]] // scale, width of a page
    property var made: []

    function init() {
        failOnWarning(/.?/);
        root.bench = createTemporaryObject(benchComponent, root);
    }
    function cleanup() {
        DesktopScheme.textScale = 1;
        root.made.forEach(item => item.destroy());
        root.made = [];
        wait(0);
    }
    function make(component, properties) {
        const item = component.createObject(root, properties);
        root.made.push(item);
        waitForRendering(item);
        return item;
    }
    function below(item) {
        return Array.from(item.children).reduce((found, child) => found.concat([child], below(child)), []);
    }

    /// What the Down key leads to in the menu that the menu key opens on `item`.
    function menuEntries(item: Item): var {
        item.forceActiveFocus();
        keyClick(Qt.Key_Menu);
        tryVerify(() => !item.activeFocus);
        const entries = [];
        for (let text = null; text !== entries[entries.length - 1]; text = item.Window.activeFocusItem.text) {
            if (text !== null) {
                entries.push(text);
            }
            keyClick(Qt.Key_Down);
        }
        keyClick(Qt.Key_Escape);
        tryVerify(() => item.activeFocus);
        return entries;
    }
}
