// What the mouse does with a row: selects it, opens its menu, drags it out. A finger scrolls the list instead.
import QtQuick

MouseArea {
    id: root

    property point start ///< where the button went down
    property bool dragging: false ///< since then

    signal held(int modifiers)
    signal picked(int modifiers)
    signal doubled
    signal menuWanted
    signal dragged

    acceptedButtons: Qt.LeftButton | Qt.RightButton
    onPressed: mouse => {
        root.preventStealing = mouse.source === Qt.MouseEventNotSynthesized && mouse.button === Qt.LeftButton;
        root.start = Qt.point(mouse.x, mouse.y);
        root.dragging = false;
        root.held(mouse.modifiers);
    }
    // Its own drag would not begin: that is for what may be stolen.
    onPositionChanged: mouse => {
        const far = Math.hypot(mouse.x - root.start.x, mouse.y - root.start.y) >= Qt.styleHints.startDragDistance;
        if (far && root.preventStealing && !root.dragging) {
            root.dragging = true;
            root.dragged();
        }
    }
    onClicked: mouse => {
        if (!root.dragging) {
            mouse.button === Qt.RightButton ? root.menuWanted() : root.picked(mouse.modifiers);
        }
    }
    onDoubleClicked: mouse => {
        if (mouse.button === Qt.LeftButton) {
            root.doubled();
        }
    }
}
