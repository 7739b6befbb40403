// A thin scroll bar, shown while there is something to scroll. Lies beside it, and takes the wheel for it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ScrollBar {
    id: root

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.06
    visible: root.policy !== T.ScrollBar.AlwaysOff && root.size < 1

    property string landmark ///< where one is, told while the bar is dragged

    readonly property real notch: 60 * root.size / Math.max(1, root.height) ///< one of the wheel's

    WheelHandler {
        target: null
        onWheel: event => root.position = Math.max(0, Math.min(1 - root.size,
            root.position - event.angleDelta.y / 120 * root.notch))
    }

    Rectangle {
        x: -width - Tokens.space.regular
        y: Math.max(0, Math.min(root.height - height,
            (root.position + root.size / 2) * root.height - height / 2))
        width: Math.max(height, place.implicitWidth + 2 * Tokens.space.regular)
        height: place.implicitHeight + 2 * Tokens.space.tight
        radius: Tokens.radius.card
        color: Tokens.color.raised
        border.color: Tokens.color.line
        visible: root.pressed && root.landmark !== ""

        Shadow {}
        TextLine {
            id: place
            anchors.centerIn: parent
            text: root.landmark
            font: Tokens.type.title2
        }
    }
    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Tokens.color.textMuted
        opacity: root.pressed ? 0.9 : root.hovered ? 0.7 : root.active ? 0.5 : 0.25
        Behavior on opacity {
            NumberAnimation { duration: Tokens.motion.appear }
        }
    }
}
