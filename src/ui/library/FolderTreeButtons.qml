// What stands at the end of a row of the outline: how many tracks a folder lists, or a file's play button, and the
// button of the queue. None of them is a stop of the keyboard: the row is its way here.
import QtQuick
import Marlune

Item {
    id: root

    required property bool isFolder
    required property bool playing
    required property int trackCount
    required property int chosen
    required property bool deviceSide

    signal playNeared
    signal playWanted
    signal queueWanted

    implicitWidth: queue.width + Tokens.space.hair + (root.isFolder ? count.width + speaker.room : play.width)

    Icon {
        id: speaker

        readonly property int room: visible ? width + Tokens.space.tight : 0

        anchors.verticalCenter: parent.verticalCenter
        visible: root.isFolder && root.playing
        symbol: "speaker.wave.2"
        side: Tokens.height.symbol - 2
        color: Tokens.color.accent
    }
    TextLine {
        id: count
        anchors.right: queue.left
        anchors.rightMargin: Tokens.space.hair
        anchors.verticalCenter: parent.verticalCenter
        visible: root.isFolder
        text: root.trackCount
        font: Tokens.type.caption
        color: Tokens.color.textMuted
        Accessible.ignored: true
    }
    TrackPlayButton {
        id: play
        objectName: "playButton"
        anchors.right: queue.left
        anchors.rightMargin: Tokens.space.hair
        anchors.verticalCenter: parent.verticalCenter
        visible: !root.isFolder
        focusPolicy: Qt.NoFocus
        tint: root.playing || hovered ? Tokens.color.accent : Tokens.color.textMuted
        playing: root.playing
        onHoveredChanged: if (hovered) root.playNeared()
        onClicked: root.playWanted()
    }
    Button {
        id: queue
        objectName: "queueButton"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        kind: Button.Borderless
        measure: Button.Small
        focusPolicy: Qt.NoFocus
        symbol: ["plus.circle", "checkmark.circle", "checkmark.circle.fill"][root.chosen]
        tint: root.chosen !== FolderTreeModel.NoneChosen || hovered ? Tokens.color.accent : Tokens.color.textMuted
        toolTip: L10n.text(root.deviceSide ? "Dodaj / usuń z playlisty" : "Dodaj / usuń z kolejki")
        onClicked: root.queueWanted()
    }
}
