// To the previous track, play and pause, to the next one.
import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property PlaybackPresenter playback
    property ColorRoles roles: Tokens.color ///< of the ground that it lies on

    spacing: 0

    Button {
        objectName: "previousButton"
        kind: Button.Borderless
        roles: root.roles
        tint: root.roles.text
        symbol: "backward.end.fill"
        toolTip: L10n.text("Poprzedni")
        enabled: root.playback.hasPrevious
        onClicked: root.playback.previous()
    }
    TrackPlayButton {
        objectName: "playButton"
        measure: Button.Large
        roles: root.roles
        tint: root.roles.text
        playing: root.playback.playing
        onClicked: root.playback.toggle()
    }
    Button {
        objectName: "nextButton"
        kind: Button.Borderless
        roles: root.roles
        tint: root.roles.text
        symbol: "forward.end.fill"
        toolTip: L10n.text("Następny")
        enabled: root.playback.hasNext
        onClicked: root.playback.next()
    }
}
