// What is listened to on the computer, and the means to steer it. Takes no room while nothing is loaded.
import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property PlaybackPresenter playback
    property ColorRoles roles: Tokens.color ///< of the ground that it lies on

    readonly property bool shown: root.playback.shown
    readonly property bool narrow: root.width < 500 * Tokens.type.scale

    implicitHeight: root.shown ? bar.implicitHeight + 2 * Tokens.space.regular : 0
    visible: root.implicitHeight > 0
    clip: true
    Accessible.role: Accessible.ToolBar
    Accessible.name: root.playback.heading

    Behavior on implicitHeight {
        NumberAnimation { duration: Tokens.motion.appear; easing.type: Easing.OutCubic }
    }
    RowLayout {
        id: bar
        x: 26 - Tokens.space.tight
        y: Tokens.space.regular
        width: root.width - x - 26 + Tokens.space.tight
        spacing: root.narrow ? Tokens.space.tight : Tokens.space.wide

        TransportButtons {
            playback: root.playback
            roles: root.roles
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            TextLine {
                objectName: "heading"
                Layout.fillWidth: true
                text: root.playback.heading
                font: Tokens.type.subheadlineStrong
                color: root.roles.text
            }
            TextLine {
                objectName: "playbackError"
                Layout.fillWidth: true
                Layout.preferredHeight: Math.max(implicitHeight, place.implicitHeight)
                verticalAlignment: Text.AlignVCenter
                visible: root.playback.error !== ""
                text: root.playback.error
                font: Tokens.type.caption
                color: root.roles.danger
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            PlaybackPosition {
                id: place
                Layout.fillWidth: true
                visible: root.playback.error === ""
                playback: root.playback
                roles: root.roles
            }
        }
        Icon {
            visible: !root.narrow
            symbol: "speaker.wave.2"
            color: root.roles.textMuted
        }
        Slider {
            id: volumeSlider
            objectName: "volumeSlider"
            Layout.leftMargin: root.narrow ? 0 : -Tokens.space.tight
            implicitWidth: root.narrow ? 60 : 85
            stepSize: 0.05
            roles: root.roles
            toolTip: L10n.text("Głośność odsłuchu")
            onMoved: root.playback.volume = value
        }
        Button {
            objectName: "stopButton"
            Layout.leftMargin: -Tokens.space.tight
            kind: Button.Borderless
            roles: root.roles
            tint: root.roles.textMuted
            symbol: "xmark"
            toolTip: L10n.text("Zakończ odsłuch")
            onClicked: root.playback.stop()
        }
    }
    Divider {
        anchors.bottom: root.bottom
        width: root.width
        color: root.roles.line
    }
    // A hand on the slider is not moved away by the sound.
    Binding {
        volumeSlider.value: root.playback.volume
        when: !volumeSlider.pressed
        restoreMode: Binding.RestoreNone
    }
}
