// The copies of the settings on the computer.
import QtQuick
import QtQuick.Layouts
import Marlune

DeviceCard {
    id: root

    required property DevicePresenter device

    signal backUp

    symbol: "checkmark.shield"
    title: L10n.text("Kopie ustawień")

    TextLine {
        objectName: "backupCount"
        Layout.fillWidth: true
        text: root.device.backupCount
        font: Tokens.type.of(16, Font.Bold)
    }
    TextBlock {
        Layout.fillWidth: true
        text: L10n.text("Konfiguracja, fonty i zasoby motywów")
        font: Tokens.type.caption
    }
    Item {
        Layout.fillHeight: true
    }
    Button {
        objectName: "deviceBackUpButton"
        text: L10n.text("Utwórz kopię")
        enabled: root.device.canWork
        onClicked: root.backUp()
    }
}
