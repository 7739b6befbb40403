// The values of a picker, below it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Popup {
    id: root

    required property string title
    required property var choices ///< the picker's delegates
    required property int current
    property bool byMouse: false ///< the mouse has moved since the list was opened or a key pressed

    implicitHeight: contentItem.implicitHeight + 2 * padding
    padding: Tokens.space.hair
    margins: Tokens.space.tight
    onAboutToShow: {
        contentItem.parent.Accessible.name = root.title;
        root.byMouse = false;
        pointer.place = null;
    }

    contentItem: ListView {
        clip: true
        implicitHeight: contentHeight
        model: root.choices
        currentIndex: root.current
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: root.title

        // A row that comes below a mouse at rest, as the keyboard scrolls the list, is not chosen by that.
        HoverHandler {
            id: pointer

            property var place: null ///< in the window, once it is known

            function follow(now: point) {
                if (pointer.place && (now.x !== pointer.place.x || now.y !== pointer.place.y)) {
                    root.byMouse = true;
                }
                pointer.place = now;
            }

            onPointChanged: if (pointer.hovered) pointer.follow(pointer.point.scenePosition)
        }
    }
    background: MenuGround {}
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Tokens.motion.state }
    }
}
