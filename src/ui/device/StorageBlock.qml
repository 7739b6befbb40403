// How the disk is used: a bar of its parts, each with its name and size.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    required property DevicePresenter device
    required property bool busy

    readonly property var colors: [Tokens.color.partFlac, Tokens.color.partMp3, Tokens.color.partMusic,
        Tokens.color.partData, Tokens.color.partFree]

    signal read

    implicitHeight: stack.implicitHeight + 40
    radius: Tokens.radius.card
    color: Tokens.color.card
    border.color: Tokens.color.line

    ColumnLayout {
        id: stack
        x: 20
        y: 20
        width: root.width - 40
        spacing: Tokens.space.regular

        RowLayout {
            spacing: Tokens.space.regular

            TextLine {
                Layout.fillWidth: true
                text: L10n.text("Pamięć")
                font: Tokens.type.title3
                Accessible.role: Accessible.Heading
            }
            TextLine {
                objectName: "totalSpace"
                text: root.device.totalSpace
                font: Tokens.type.subheadline
                color: Tokens.color.textMuted
            }
        }
        Item {
            id: bar

            readonly property int gap: 2

            Layout.fillWidth: true
            implicitHeight: 14
            Accessible.role: Accessible.Graphic
            Accessible.name: root.device.storageWords

            // No layout: in Qt 6.4 one keeps items that a Repeater has deleted while the page was hidden.
            Row {
                anchors.fill: parent
                spacing: bar.gap

                Repeater {
                    id: parts
                    model: root.device.shares

                    Rectangle {
                        required property real modelData
                        required property int index

                        height: bar.height
                        // A part that is there can be seen, however small.
                        width: Math.max(4, modelData * (bar.width - parts.count * bar.gap))
                        radius: 4
                        color: root.colors[root.device.parts[index]] ?? Tokens.color.partData
                    }
                }
                Rectangle {
                    width: Math.max(0, bar.width - x)
                    height: bar.height
                    radius: 4
                    color: Tokens.color.partFree
                }
            }
        }
        Flow {
            Layout.fillWidth: true
            spacing: Tokens.space.wide

            Repeater {
                model: root.device.legends

                Legend {
                    required property string modelData
                    required property int index

                    color: root.colors[root.device.parts[index] ?? DevicePresenter.Free]
                    text: modelData
                }
            }
        }
        Button {
            objectName: "readDeviceButton"
            visible: !root.device.musicRead
            text: L10n.text("Odczytaj iPoda")
            enabled: !root.busy
            onClicked: root.read()
        }
    }
}
