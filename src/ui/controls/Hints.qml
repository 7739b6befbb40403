// The one tooltip of the window: controls say what the pointer rests on, the window shows it.
pragma Singleton

import QtQuick

QtObject {
    id: root

    property Item target: null
    property string text

    /// What it is about is seen: it may have left the window meanwhile.
    readonly property bool shown: root.target !== null && root.target.visible && root.target.Window.window !== null

    function show(item: Item, text: string) {
        root.target = null;
        root.text = text;
        root.target = text === "" ? null : item;
    }

    /// Only if it is still the item's hint that is shown.
    function hide(item: Item) {
        if (root.target === item) {
            root.target = null;
        }
    }
}
