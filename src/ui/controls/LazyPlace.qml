// What fills this place is made when it is first shown, and keeps its state from then on.
//
// No Loader: in Qt 6.4 that makes nothing of a component that is bound to its surroundings.
import QtQuick

Item {
    id: root

    required property bool shown
    default property Component content
    property Item made: null

    function makeOnce() {
        if (root.shown && !root.made) {
            root.made = root.content.createObject(root, {}) as Item;
        }
    }

    anchors.fill: parent
    visible: root.shown
    onShownChanged: root.makeOnce()
    Component.onCompleted: root.makeOnce()
}
