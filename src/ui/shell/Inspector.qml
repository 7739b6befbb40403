// The device at the right of every page but its own.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Rectangle {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell

    color: Tokens.color.window

    Flickable {
        id: flick
        anchors.fill: parent
        anchors.margins: 24
        anchors.bottomMargin: buttons.height + 24 + 18
        contentHeight: stack.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: contentHeight > height
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width
            y: flick.y
            height: flick.height
        }

        ColumnLayout {
            id: stack
            width: flick.width
            spacing: 18

            Text {
                Layout.fillWidth: true
                text: L10n.text("Twój iPod")
                textFormat: Text.PlainText
                font: Tokens.type.of(25, Font.Bold)
                color: Tokens.color.text
            }
            RowLayout {
                spacing: 7

                Rectangle {
                    implicitWidth: 7
                    implicitHeight: 7
                    radius: 3.5
                    color: root.shell.connected ? Tokens.color.good : Tokens.color.textMuted
                }
                Text {
                    objectName: "connectionText"
                    text: L10n.text(root.shell.connected ? "Połączony" : "Czeka na połączenie")
                    textFormat: Text.PlainText
                    font: Tokens.type.caption
                    color: Tokens.color.textMuted
                }
            }
            DeviceDrawing {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 8
                Layout.bottomMargin: 8
                lit: root.shell.connected
            }
            DeviceSummary {
                Layout.fillWidth: true
                visible: root.shell.connected
                shell: root.shell
            }
            OfferedDevices {
                Layout.fillWidth: true
                visible: root.shell.offeredDevices.length > 0
                names: root.shell.offeredDevices
                onChosen: place => root.shell.selectOffered(place)
            }
            Text {
                objectName: "connectHint"
                Layout.fillWidth: true
                visible: !root.shell.connected
                text: L10n.text("Podłącz iPoda przez USB. Rockbox powinien być widoczny jako dysk na Macu.")
                textFormat: Text.PlainText
                font: Tokens.type.subheadline
                color: Tokens.color.textMuted
                wrapMode: Text.Wrap
                lineHeight: 1.2
            }
        }
    }
    ColumnLayout {
        id: buttons
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 24
        spacing: Tokens.space.regular

        Button {
            objectName: "chooseDeviceButton"
            Layout.fillWidth: true
            text: L10n.text("Wybierz urządzenie…")
            enabled: !root.model.busy
            onClicked: root.model.chooseDevice()
        }
        Button {
            objectName: "ejectButton"
            Layout.fillWidth: true
            measure: Button.Large
            symbol: "eject.fill"
            text: L10n.text("Wysuń iPoda")
            enabled: root.shell.canEject
            onClicked: root.model.eject()
        }
    }
}
