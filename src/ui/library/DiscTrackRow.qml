// A track of an album, or the line above the tracks of a disc. Shows what it is given, reports what is wanted.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property string heading ///< of a disc; empty for a track
    required property string trackTitle
    required property string number
    required property string artist
    required property string duration
    required property bool queued
    required property bool playing
    required property bool deviceSide
    required property bool current

    readonly property bool isTrack: root.heading === ""
    readonly property string queueText: L10n.text(root.queued ? root.deviceSide ? "Usuń z playlisty" : "Usuń z kolejki"
        : root.deviceSide ? "Dodaj do playlisty" : "Dodaj do kolejki")

    signal played
    signal playNeared
    signal toggled
    signal menuWanted(bool byKey)

    leftPadding: Tokens.space.hair
    rightPadding: Tokens.space.hair
    // What has the focus has to stay a stop.
    focusPolicy: !root.isTrack ? Qt.NoFocus : root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.name: root.isTrack ? root.number + ", " + root.trackTitle + (root.artist === "" ? "" : ", " + root.artist)
        : "CD " + root.heading
    Accessible.description: root.isTrack ? root.duration : ""
    Accessible.selectable: root.isTrack
    Accessible.selected: root.queued
    Accessible.onPressAction: root.played()
    Keys.onReturnPressed: root.played()
    Keys.onEnterPressed: root.played()
    Keys.onSpacePressed: root.toggled()
    Keys.onMenuPressed: root.menuWanted(true)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier;
        if (event.accepted) {
            root.menuWanted(true);
        }
    }
    onDoubleClicked: if (root.isTrack && !root.playing) root.played()

    TapHandler {
        acceptedButtons: Qt.RightButton
        enabled: root.isTrack
        onTapped: root.menuWanted(false)
    }

    contentItem: Item {
        RowLayout {
            anchors.fill: parent
            visible: root.isTrack
            spacing: Tokens.space.hair

            Line {
                Layout.preferredWidth: Math.min(Math.max(implicitWidth, Math.round(25 * Tokens.type.scale)), 100)
                text: root.number
                font: Tokens.type.caption
                color: Tokens.color.textMuted
                horizontalAlignment: Text.AlignRight
            }
            TrackPlayButton {
                objectName: "playButton"
                focusPolicy: Qt.NoFocus // the list is the keyboard's way here
                playing: root.playing
                onHoveredChanged: if (hovered) root.playNeared()
                onClicked: root.played()
            }
            Line {
                objectName: "trackTitle"
                Layout.fillWidth: true
                text: root.trackTitle
                color: root.playing ? Tokens.color.accent : Tokens.color.text
            }
            Line {
                Layout.maximumWidth: Math.round(root.width * 0.36)
                visible: root.artist !== ""
                text: root.artist
                font: Tokens.type.caption
                color: Tokens.color.textMuted
            }
            Line {
                Layout.preferredWidth: Math.max(implicitWidth, Math.round(45 * Tokens.type.scale))
                text: root.duration
                font: Tokens.type.caption2
                color: Tokens.color.textMuted
                horizontalAlignment: Text.AlignRight
            }
            Button {
                objectName: "queueButton"
                kind: Button.Borderless
                measure: Button.Small
                focusPolicy: Qt.NoFocus
                symbol: root.queued ? "checkmark.circle.fill" : "plus.circle"
                toolTip: root.queueText
                Accessible.name: root.queueText + ": " + root.trackTitle
                onClicked: root.toggled()
            }
        }
        DiscHeading {
            anchors.fill: parent
            visible: !root.isTrack
            text: root.heading
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control
        color: root.isTrack && root.hovered ? Tokens.color.hover : "transparent"

        Divider {
            anchors.bottom: parent.bottom
            width: parent.width
        }
        FocusRing {
            anchors.margins: -2
            shown: root.visualFocus
        }
    }

    component Line: TextLine {
        Accessible.ignored: true
    }
}
