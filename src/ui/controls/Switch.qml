// Something that is on or off at once, with its text before it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Switch {
    id: root

    readonly property int trackHeight: Math.round(Tokens.height.small * 0.8)
    readonly property int trackWidth: Math.round(root.trackHeight * 1.7)

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Tokens.height.regular
    rightPadding: root.trackWidth + Tokens.space.tight
    font: Tokens.type.subheadline
    focusPolicy: Qt.StrongFocus
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: root.text
    Keys.onReturnPressed: {
        root.toggle();
        root.toggled();
    }

    indicator: Rectangle {
        x: root.width - width
        y: (root.height - height) / 2
        width: root.trackWidth
        height: root.trackHeight
        radius: height / 2
        color: root.checked ? Tokens.color.accent : Tokens.color.card
        border.width: root.checked ? 0 : 1
        border.color: Tokens.color.textMuted

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.down ? Tokens.color.pressed : Tokens.color.hover
            visible: root.enabled && (root.down || root.hovered)
        }
        Rectangle {
            readonly property int gap: 3

            x: gap + root.visualPosition * (parent.width - width - 2 * gap)
            y: gap
            width: parent.height - 2 * gap
            height: width
            radius: width / 2
            color: root.checked ? Tokens.color.textOnAccent : Tokens.color.textMuted

            Behavior on x {
                enabled: !root.pressed
                NumberAnimation { duration: Tokens.motion.state }
            }
        }
        FocusRing {
            shown: root.visualFocus
            around: parent.radius
        }
    }
    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: Tokens.color.text
        verticalAlignment: Text.AlignVCenter
    }
}
