// A track's play button, number, title and artist in one line. The title has room before the artist; the row speaks for
// both.
import QtQuick
import Marlune

Item {
    id: root

    required property string number ///< may be empty
    required property string title
    required property string artist
    required property bool playing

    signal playNeared
    signal playWanted

    readonly property real room: Math.max(0, root.width - words.x)
    readonly property real artistRoom: Math.min(by.implicitWidth, Math.round(root.room * 0.35))

    TextMetrics {
        id: usual // so that titles begin below each other
        font: Tokens.type.caption
        text: "00 "
    }
    TrackPlayButton {
        id: play
        objectName: "playButton"
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus // the row is the keyboard's way here
        tint: root.playing || hovered ? Tokens.color.accent : Tokens.color.textMuted
        playing: root.playing
        onHoveredChanged: if (hovered) root.playNeared()
        onClicked: root.playWanted()
    }
    Row {
        id: words
        x: play.width + Tokens.space.hair
        anchors.verticalCenter: parent.verticalCenter

        TextLine {
            id: place
            // The implicit width is read in any case: where that is first done later on it changes as it is read.
            width: Math.min(Math.max(implicitWidth, usual.advanceWidth), text === "" ? 0 : root.room * 0.3)
            anchors.baseline: name.baseline
            text: root.number
            font: Tokens.type.caption
            color: Tokens.color.textMuted
            Accessible.ignored: true
        }
        TextLine {
            id: name
            objectName: "trackTitle"
            width: Math.min(implicitWidth, root.room - place.width - root.artistRoom)
            text: root.title
            font: Tokens.type.subheadline
            color: root.playing ? Tokens.color.accent : Tokens.color.text
            Accessible.ignored: true
        }
        TextLine {
            id: by
            width: Math.min(implicitWidth, root.room - place.width - name.width)
            anchors.baseline: name.baseline
            text: " · " + root.artist
            font: Tokens.type.subheadline
            color: Tokens.color.textMuted
            Accessible.ignored: true
        }
    }
}
