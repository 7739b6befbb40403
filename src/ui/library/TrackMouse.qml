// What the mouse does with a row: selects it, opens its menu, drags it out. A finger scrolls the list instead.
import QtQuick

MouseArea {
    id: root

    signal held(int modifiers)
    signal picked(int modifiers)
    signal doubled
    signal menuWanted
    signal dragged

    acceptedButtons: Qt.LeftButton | Qt.RightButton
    drag.target: root.preventStealing ? handle : null
    drag.onActiveChanged: if (drag.active) root.dragged()
    onPressed: mouse => {
        root.preventStealing = mouse.source === Qt.MouseEventNotSynthesized && mouse.button === Qt.LeftButton;
        root.held(mouse.modifiers);
    }
    onClicked: mouse => mouse.button === Qt.RightButton ? root.menuWanted() : root.picked(mouse.modifiers)
    onDoubleClicked: mouse => {
        if (mouse.button === Qt.LeftButton) {
            root.doubled();
        }
    }

    Item {
        id: handle // what is dragged is shown by the desktop
    }
}
