// A thin scroll bar, there while it is of use.
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
