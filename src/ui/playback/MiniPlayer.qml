// What is listened to on the computer, and the means to steer it. Takes no room while nothing is loaded.
import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property PlaybackPresenter playback

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
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            TextLine {
                objectName: "heading"
                Layout.fillWidth: true
                text: root.playback.heading
                font: Tokens.type.subheadlineStrong
            }
            TextLine {
                objectName: "playbackError"
                Layout.fillWidth: true
                Layout.preferredHeight: Math.max(implicitHeight, place.implicitHeight)
                verticalAlignment: Text.AlignVCenter
                visible: root.playback.error !== ""
                text: root.playback.error
                font: Tokens.type.caption
                color: Tokens.color.danger
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            PlaybackPosition {
                id: place
                Layout.fillWidth: true
                visible: root.playback.error === ""
                playback: root.playback
            }
        }
        Icon {
            visible: !root.narrow
            symbol: "speaker.wave.2"
            color: Tokens.color.textMuted
        }
        Slider {
            id: volumeSlider
            objectName: "volumeSlider"
            Layout.leftMargin: root.narrow ? 0 : -Tokens.space.tight
            implicitWidth: root.narrow ? 60 : 85
            stepSize: 0.05
            toolTip: L10n.text("Głośność odsłuchu")
            onMoved: root.playback.volume = value
        }
        Button {
            objectName: "stopButton"
            Layout.leftMargin: -Tokens.space.tight
            kind: Button.Borderless
            tint: Tokens.color.textMuted
            symbol: "xmark"
            toolTip: L10n.text("Zakończ odsłuch")
            onClicked: root.playback.stop()
        }
    }
    Divider {
        anchors.bottom: root.bottom
        width: root.width
    }
    // A hand on the slider is not moved away by the sound.
    Binding {
        volumeSlider.value: root.playback.volume
        when: !volumeSlider.pressed
        restoreMode: Binding.RestoreNone
    }
}
