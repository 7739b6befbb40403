// A small panel over the dimmed window, a dialog with its title as name. Escape closes it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Dialog {
    id: root

    property alias onGround: ground.data ///< below all else

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    dim: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    margins: Tokens.space.group
    padding: Tokens.space.group
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    background: Rectangle {
        id: ground
        radius: Tokens.radius.sheet
        color: Tokens.color.window
        border.color: Tokens.color.line

        Shadow {
            around: parent.radius
            blur: 30
            drop: 10
            strength: Tokens.color.sheetShadow
        }
    }
    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Tokens.motion.appear
            easing.type: Easing.OutCubic
        }
        NumberAnimation {
            property: "scale"
            from: 0.97
            to: 1
            duration: Tokens.motion.appear
            easing.type: Easing.OutCubic
        }
    }
    exit: Transition {
        NumberAnimation {
            property: "opacity"
            from: 1
            to: 0
            duration: Tokens.motion.state
            easing.type: Easing.OutCubic
        }
    }
    T.Overlay.modal: Rectangle {
        color: Tokens.color.scrim
    }
}
