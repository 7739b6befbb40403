// Which iPod is drawn and in what colour, and the ways to its files.
import QtQuick
import Marlune

Flow {
    id: root

    required property DevicePresenter device

    spacing: Tokens.space.regular

    ComboPicker {
        objectName: "modelPicker"
        width: Math.round(Math.min(root.width, 330 * Tokens.type.scale))
        title: L10n.text("Model / grafika")
        values: root.device.models
        value: root.device.chosenModel
        onPicked: name => root.device.chooseModel(name)
    }
    ComboPicker {
        objectName: "finishPicker"
        width: Math.round(Math.min(root.width, 215 * Tokens.type.scale))
        title: L10n.text("Kolor")
        values: root.device.finishes
        value: root.device.chosenFinish
        onPicked: name => root.device.chooseFinish(name)
    }
    Button {
        objectName: "openDiskButton"
        symbol: "folder"
        text: L10n.text("Otwórz dysk w Finderze")
        onClicked: root.device.openDisk()
    }
    Button {
        objectName: "openMusicButton"
        symbol: "music.note"
        text: L10n.text("Otwórz muzykę")
        enabled: root.device.hasMusicFolder
        onClicked: root.device.openMusic()
    }
}
