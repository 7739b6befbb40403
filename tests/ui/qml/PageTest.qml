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
}
