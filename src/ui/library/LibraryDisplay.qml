// How the collection is shown: view, order and the size of covers.
import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property MarluneModel model
    required property LibraryPresenter library

    spacing: Tokens.space.regular

    ComboPicker {
        objectName: "viewPicker"
        Layout.fillWidth: true
        Layout.minimumWidth: barestWidth
        Layout.maximumWidth: Layout.preferredWidth
        Layout.preferredWidth: Math.max(Math.round(120 * Math.max(1, Tokens.type.scale)), leastWidth)
        title: L10n.text("Widok")
        values: root.library.viewModes
        value: root.library.viewMode
        onPicked: value => root.model.viewMode = value
    }
    ComboPicker {
        objectName: "sortPicker"
        Layout.fillWidth: true
        Layout.minimumWidth: barestWidth
        Layout.maximumWidth: Layout.preferredWidth
        Layout.preferredWidth: Math.round(185 * Math.max(1, Tokens.type.scale))
        title: L10n.text("Sortuj")
        values: root.library.sortModes
        value: root.model.sortMode
        onPicked: value => root.model.sortMode = value
    }
    Item {
        Layout.fillWidth: true
        visible: root.library.albumsShown
    }
    Icon {
        visible: root.library.albumsShown
        symbol: "square.grid.2x2"
        color: Tokens.color.textMuted
    }
    Slider {
        objectName: "tileSlider"
        visible: root.library.albumsShown
        from: 140
        to: 240
        stepSize: 5
        value: root.model.tileSize
        toolTip: L10n.text("Rozmiar okładek")
        onMoved: root.model.tileSize = value
    }
}
