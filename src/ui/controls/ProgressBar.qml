// How much of something is done or used; without a value, that something goes on.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ProgressBar {
    id: root

    property ColorRoles roles: Tokens.color ///< of the ground that it lies on

    readonly property real sweepShare: 0.3

    implicitWidth: 120
    implicitHeight: 5

    background: Rectangle {
        radius: height / 2
        color: root.roles.pressed
    }
    contentItem: Item {
        clip: root.indeterminate

        Rectangle {
            visible: !root.indeterminate && root.visualPosition > 0
            width: Math.max(parent.height, root.visualPosition * parent.width)
            height: parent.height
            radius: height / 2
            color: root.roles.accent
        }
        Rectangle {
            id: sweep
            visible: root.indeterminate
            width: Tokens.motion.still ? parent.width : root.sweepShare * parent.width
            height: parent.height
            radius: height / 2
            color: root.roles.accent
            opacity: Tokens.motion.still ? root.roles.disabled : 1

            NumberAnimation on x {
                running: root.indeterminate && root.visible && !Tokens.motion.still
                loops: Animation.Infinite
                from: -root.sweepShare * root.width
                to: root.width
                duration: Tokens.motion.sweep
            }
        }
    }
}
