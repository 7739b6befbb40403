// To the previous track, play and pause, to the next one.
import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property PlaybackPresenter playback

    spacing: 0

    Button {
        objectName: "previousButton"
        kind: Button.Borderless
        tint: Tokens.color.text
        symbol: "backward.end.fill"
        toolTip: L10n.text("Poprzedni")
        enabled: root.playback.hasPrevious
        onClicked: root.playback.previous()
    }
    TrackPlayButton {
        objectName: "playButton"
        measure: Button.Large
        tint: Tokens.color.text
        playing: root.playback.playing
        onClicked: root.playback.toggle()
    }
    Button {
        objectName: "nextButton"
        kind: Button.Borderless
        tint: Tokens.color.text
        symbol: "forward.end.fill"
        toolTip: L10n.text("Następny")
        enabled: root.playback.hasNext
        onClicked: root.playback.next()
    }
}
