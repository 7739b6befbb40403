// What waits for the device, and the work that goes on.
import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell

    readonly property bool narrow: root.width - 52 < words.implicitWidth + buttons.implicitWidth + Tokens.space.group

    implicitHeight: stack.implicitHeight + 38

    QueueDrop {
        anchors.fill: parent
        shell: root.shell
    }
    ColumnLayout {
        id: stack
        x: 26
        y: 19
        width: root.width - 52
        spacing: 9

        GridLayout {
            Layout.fillWidth: true
            columns: root.narrow ? 1 : 2
            columnSpacing: Tokens.space.group
            rowSpacing: Tokens.space.regular

            ColumnLayout {
                id: words
                spacing: 5

                TextLine {
                    Layout.fillWidth: true
                    text: root.shell.headline
                    font: Tokens.type.of(15, Font.DemiBold)
                }
                TextLine {
                    objectName: "queueLine"
                    Layout.fillWidth: true
                    text: root.shell.queueLine
                    font: Tokens.type.caption
                    color: Tokens.color.textMuted
                }
            }
            RowLayout {
                id: buttons
                Layout.alignment: root.narrow ? Qt.AlignLeft : Qt.AlignRight
                spacing: Tokens.space.tight

                Button {
                    objectName: "clearQueueButton"
                    kind: Button.Borderless
                    text: L10n.text("Wyczyść kolejkę")
                    enabled: root.shell.canClearQueue
                    onClicked: root.model.clearQueue()
                }
                Button {
                    objectName: "transferButton"
                    kind: Button.Prominent
                    measure: Button.Large
                    symbol: "arrow.down.to.line"
                    text: L10n.text("Wgraj na iPoda")
                    enabled: root.shell.canTransfer
                    onClicked: root.model.transferQueue()
                }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            visible: root.model.busy
            spacing: Tokens.space.regular

            ProgressBar {
                objectName: "workProgress"
                Layout.fillWidth: true
                value: root.model.progress
                indeterminate: root.model.progress <= 0
                Accessible.name: L10n.text(root.model.status)
            }
            Button {
                objectName: "cancelButton"
                visible: root.model.cancellable
                measure: Button.Small
                text: root.model.cancelling ? L10n.text("Przerywam…") : L10n.text("Przerwij")
                enabled: !root.model.cancelling
                onClicked: root.model.cancelWork()
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: Tokens.space.regular

            TextLine {
                objectName: "statusText"
                Layout.fillWidth: true
                text: L10n.text(root.model.status)
                font: Tokens.type.caption2
                color: Tokens.color.textMuted
                Accessible.role: Accessible.StatusBar
                Accessible.name: text
            }
            TextLine {
                visible: text !== ""
                text: root.shell.remaining
                font: Tokens.type.caption2
                color: Tokens.color.textMuted
            }
        }
    }
}
