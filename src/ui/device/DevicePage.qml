// The connected iPod: what it is, how its disk is used, and the ways to its files, themes and copies.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property DevicePresenter device

    Flickable {
        id: flick
        anchors.fill: parent
        visible: root.device.connected
        contentHeight: stack.implicitHeight + 2 * stack.y
        boundsBehavior: Flickable.StopAtBounds
        clip: contentHeight > height
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width
            height: root.height
        }

        ColumnLayout {
            id: stack

            readonly property int widest: 980 ///< lines stay readable in a large window

            x: Math.max(28, Math.round((flick.width - widest) / 2))
            y: 28
            width: flick.width - 2 * x
            spacing: 22

            DeviceHero {
                Layout.fillWidth: true
                model: root.model
                device: root.device
            }
            DeviceControls {
                Layout.fillWidth: true
                device: root.device
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: Tokens.space.wide

                DeviceTile {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1 // all alike
                    symbol: "internaldrive"
                    value: root.device.freeSpace
                    label: L10n.text("Miejsce na kolejne odkrycia")
                }
                DeviceTile {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1 // all alike
                    symbol: "music.note"
                    value: root.device.musicCount
                    label: L10n.text("Twoja muzyka")
                }
                DeviceTile {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1 // all alike
                    symbol: "paintbrush.pointed"
                    value: root.device.themeCount
                    label: L10n.text("Motywy")
                }
            }
            StorageBlock {
                Layout.fillWidth: true
                device: root.device
                busy: root.model.busy
                onRead: root.model.scanDeviceMusic()
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: Tokens.space.wide

                StyleCard {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1 // as wide as the other
                    device: root.device
                }
                BackupCard {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1
                    device: root.device
                    onBackUp: root.model.backup()
                }
            }
        }
    }
    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Tokens.space.section, 360)
        visible: !root.device.connected
        spacing: Tokens.space.group

        IPodView {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: 220
            model: root.model
            maxHeight: Math.max(135, Math.min(370, root.height - 220 * Tokens.type.scale))
        }
        TextBlock {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: L10n.text("Twój iPod czeka na połączenie")
            font: Tokens.type.of(18, Font.Bold)
            color: Tokens.color.text
            Accessible.role: Accessible.Heading
        }
        Button {
            objectName: "pageChooseDeviceButton"
            Layout.alignment: Qt.AlignHCenter
            kind: Button.Prominent
            text: L10n.text("Wybierz urządzenie…")
            enabled: !root.model.busy
            onClicked: root.model.chooseDevice()
        }
    }
}
