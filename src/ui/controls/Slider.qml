// A slider: the size of tiles, a place in a track, a volume.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Slider {
    id: root

    property string toolTip

    readonly property int knob: 16

    implicitWidth: 85
    implicitHeight: Tokens.height.regular
    focusPolicy: Qt.StrongFocus
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: root.toolTip
    onHoveredChanged: root.hovered ? Hints.show(root, root.toolTip) : Hints.hide(root)

    handle: Rectangle {
        x: root.leftPadding + root.visualPosition * (root.availableWidth - width)
        y: (root.height - height) / 2
        width: root.knob
        height: root.knob
        radius: width / 2
        color: Tokens.color.knob
        border.color: Tokens.color.line

        Shadow {
            around: 4
            blur: 4
            drop: 1
            strength: Tokens.color.sheetShadow
        }
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.pressed ? Tokens.color.pressed : Tokens.color.hover
            visible: root.enabled && (root.pressed || root.hovered)
        }
        FocusRing {
            shown: root.visualFocus
            around: parent.radius
        }
    }
    background: Rectangle {
        x: root.leftPadding
        y: (root.height - height) / 2
        width: root.availableWidth
        height: 4
        radius: 2
        color: Tokens.color.pressed

        Rectangle {
            width: root.visualPosition * parent.width
            height: parent.height
            radius: parent.radius
            color: Tokens.color.accent
        }
    }
}
