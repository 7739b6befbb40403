// How far into a track the listening is, and the means to go elsewhere in it.
import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property PlaybackPresenter playback
    property ColorRoles roles: Tokens.color ///< of the ground that it lies on

    spacing: Tokens.space.tight

    Time {
        objectName: "positionText"
        text: root.playback.positionText
    }
    Slider {
        id: slider
        objectName: "positionSlider"
        Layout.fillWidth: true
        implicitHeight: Tokens.height.small
        enabled: root.playback.duration > 0
        to: Math.max(1, root.playback.duration)
        stepSize: 5
        roles: root.roles
        Accessible.name: L10n.text("Miejsce w utworze")
        onMoved: root.playback.seek(value)
    }
    Time {
        text: root.playback.durationText
        horizontalAlignment: Text.AlignRight
    }
    // A hand on the slider is not moved away by the sound.
    Binding {
        slider.value: root.playback.position
        when: !slider.pressed
        restoreMode: Binding.RestoreNone
    }

    component Time: TextLine {
        Layout.preferredWidth: Math.max(implicitWidth, widest.advanceWidth)
        elide: Text.ElideNone
        font: Tokens.type.caption
        color: root.roles.textMuted

        TextMetrics {
            id: widest
            font: Tokens.type.caption
            text: "00:00"
        }
    }
}
