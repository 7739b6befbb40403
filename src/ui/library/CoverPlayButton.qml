// The round button on a cover that plays it. The list around it is the keyboard's way here.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.AbstractButton {
    id: root

    required property bool playing
    required property bool shown

    signal neared ///< a press may follow

    implicitWidth: Tokens.height.large
    implicitHeight: Tokens.height.large
    focusPolicy: Qt.NoFocus
    opacity: root.shown ? 1 : 0
    visible: root.opacity > 0
    Accessible.name: L10n.text(root.playing ? "Pauza" : "Odtwórz")
    onPlayingChanged: Hints.hide(root) // it said what has been done
    onHoveredChanged: {
        if (root.hovered) {
            Hints.show(root, Accessible.name);
            root.neared();
        } else {
            Hints.hide(root);
        }
    }

    Behavior on opacity {
        NumberAnimation { duration: Tokens.motion.state }
    }
    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            symbol: root.playing ? "pause.fill" : "play.fill"
            color: Tokens.color.textOnAccent
        }
    }
    background: Rectangle {
        radius: width / 2
        color: Tokens.color.accent

        Shadow {
            around: parent.radius
            blur: 8
            drop: 2
            strength: Tokens.color.sheetShadow
        }
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.down ? Tokens.color.pressed : Tokens.color.hover
            visible: root.down || root.hovered
        }
    }
}
