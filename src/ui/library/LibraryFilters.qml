// What of the collection is shown, and how: source, format, search, order and size.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property MarluneModel model
    required property LibraryPresenter library

    readonly property list<string> sources: ["Na Macu", "Na iPodzie"]

    signal contentWanted ///< the keyboard is to go on in what is listed

    spacing: 15

    Flow {
        id: filters

        readonly property real roomForFormats: width - source.width - read.width - hiRes.width - 3 * spacing

        Layout.fillWidth: true
        spacing: Tokens.space.tight

        SegmentedPicker {
            id: source
            objectName: "sourcePicker"
            width: Math.max(200, implicitWidth)
            title: L10n.text("Źródło")
            values: root.sources
            value: root.sources[root.model.libraryOnDevice ? 1 : 0]
            onPicked: value => root.model.libraryOnDevice = value === root.sources[1]
        }
        Button {
            id: read
            objectName: "readDeviceButton"
            text: L10n.text("Odczytaj iPoda")
            enabled: root.library.canReadDevice
            onClicked: root.model.scanDeviceMusic()
        }
        SegmentedPicker {
            objectName: "formatPicker"
            // One row where all of it fits in some way, otherwise a row of its own.
            width: Math.min(implicitWidth,
                filters.roomForFormats < minimumWidth ? filters.width : filters.roomForFormats)
            title: L10n.text("Format")
            values: root.library.formats
            value: root.model.formatFilter
            onPicked: value => root.model.formatFilter = value
        }
        CheckBox {
            id: hiRes
            objectName: "hiResCheck"
            text: L10n.text("Hi-Res")
            toolTip: L10n.text(
                "Pliki powyżej 16-bit lub 48 kHz. Parametry pliku, niezależnie od możliwości wyjścia iPoda.")
            checked: root.model.hiResOnly
            onToggled: root.model.hiResOnly = checked
        }
    }
    // Search and display are in one row where the search keeps a sensible width, otherwise below each other.
    GridLayout {
        Layout.fillWidth: true
        columns: root.width - display.implicitWidth - columnSpacing < search.implicitWidth ? 1 : 2
        columnSpacing: Tokens.space.regular
        rowSpacing: root.spacing

        SearchField {
            id: search
            objectName: "searchField"
            Layout.fillWidth: true
            placeholderText: L10n.text("Szukaj albumu, wykonawcy lub utworu")
            text: root.model.search
            onTextChanged: root.model.search = text
            Keys.onDownPressed: root.contentWanted()
            onLeaveWanted: root.contentWanted()

            Shortcut {
                sequence: "Ctrl+F"
                enabled: search.visible // not on another page
                onActivated: search.forceActiveFocus(Qt.ShortcutFocusReason)
            }
        }
        LibraryDisplay {
            id: display
            Layout.fillWidth: parent.columns === 1
            model: root.model
            library: root.library
        }
    }
}
