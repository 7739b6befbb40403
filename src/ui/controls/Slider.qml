// A slider: the size of tiles, a place in a track, a volume.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Slider {
    id: root

    property string toolTip
    property ColorRoles roles: Tokens.color ///< of the ground that it lies on

    readonly property int knob: 16

    implicitWidth: 85
    implicitHeight: Tokens.height.regular
    focusPolicy: Qt.StrongFocus
    opacity: root.enabled ? 1 : root.roles.disabled
    Accessible.name: root.toolTip
    onHoveredChanged: root.hovered ? Hints.show(root, root.toolTip) : Hints.hide(root)

    handle: Rectangle {
        x: root.leftPadding + root.visualPosition * (root.availableWidth - width)
        y: (root.height - height) / 2
        width: root.knob
        height: root.knob
        radius: width / 2
        color: root.roles.knob
        border.color: root.roles.line

        Shadow {
            around: 4
            blur: 4
            drop: 1
            strength: root.roles.sheetShadow
        }
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.pressed ? root.roles.pressed : root.roles.hover
            visible: root.enabled && (root.pressed || root.hovered)
        }
        FocusRing {
            shown: root.visualFocus
            border.color: root.roles.focusRing
            around: parent.radius
        }
    }
    background: Rectangle {
        x: root.leftPadding
        y: (root.height - height) / 2
        width: root.availableWidth
        height: 4
        radius: 2
        color: root.roles.pressed

        Rectangle {
            width: root.visualPosition * parent.width
            height: parent.height
            radius: parent.radius
            color: root.roles.accent
        }
    }
}
