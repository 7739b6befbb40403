// What can be done for the collection as a whole.
import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    required property MarluneModel model
    required property QualityPresenter quality

    readonly property list<string> sources: ["Na Macu", "Na iPodzie"]

    implicitHeight: stack.implicitHeight + 2 * Tokens.space.wide
    radius: Tokens.radius.card
    color: Tokens.color.card
    border.color: Tokens.color.line

    ColumnLayout {
        id: stack
        x: Tokens.space.wide
        y: Tokens.space.wide
        width: root.width - 2 * Tokens.space.wide
        spacing: Tokens.space.regular

        TaskRow {
            Layout.fillWidth: true
            title: L10n.text("Biblioteka")

            SegmentedPicker {
                objectName: "qualitySource"
                width: Math.max(200, implicitWidth)
                title: L10n.text("Biblioteka")
                values: root.sources
                value: root.sources[root.model.libraryOnDevice ? 1 : 0]
                onPicked: value => root.model.libraryOnDevice = value === root.sources[1]
            }
            Button {
                objectName: "qualityReadDevice"
                text: L10n.text("Odczytaj iPoda")
                enabled: root.quality.canUseDevice
                onClicked: root.model.scanDeviceMusic()
            }
        }
        Divider {
            Layout.fillWidth: true
        }
        TaskRow {
            Layout.fillWidth: true
            title: L10n.text("Okładki")
            note: L10n.text("Tylko jednoznaczne dopasowania.")

            Button {
                objectName: "repairCoversButton"
                text: L10n.text("Napraw dostępne okładki")
                enabled: root.quality.canCheck
                onClicked: root.model.repairAvailableCovers()
            }
            Button {
                objectName: "findCoversButton"
                text: L10n.text("Znajdź brakujące w sieci")
                enabled: root.quality.canCheck
                onClicked: root.model.findMissingCovers()
            }
        }
        Divider {
            Layout.fillWidth: true
        }
        TaskRow {
            Layout.fillWidth: true
            title: L10n.text("Duplikaty")
            note: L10n.text(root.model.duplicateStatus)

            Button {
                objectName: "checkDuplicatesButton"
                text: L10n.text("Sprawdź dokładne duplikaty")
                enabled: root.quality.canCheck
                onClicked: root.model.checkDuplicates()
            }
        }
        Divider {
            Layout.fillWidth: true
        }
        TaskRow {
            Layout.fillWidth: true
            title: L10n.text("Pliki macOS")
            note: L10n.text("Przenosi potwierdzone pliki AppleDouble do kopii na Macu; nie usuwa muzyki.")

            Button {
                objectName: "cleanupButton"
                text: L10n.text("Posprzątaj pliki macOS (._)")
                enabled: root.quality.canUseDevice
                onClicked: root.model.cleanupMacFiles()
            }
        }
    }
}
