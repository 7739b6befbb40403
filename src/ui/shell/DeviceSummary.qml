// The connected device in words: name, firmware, room, the way to its files, and its themes.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property ShellPresenter shell

    spacing: 18

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 5

        TextLine {
            objectName: "deviceName"
            Layout.fillWidth: true
            text: root.shell.deviceName
            font: Tokens.type.headline
        }
        TextLine {
            Layout.fillWidth: true
            text: root.shell.deviceVersion
            font: Tokens.type.caption2
            color: Tokens.color.textMuted
        }
        TextLine {
            objectName: "deviceSpace"
            Layout.fillWidth: true
            text: root.shell.deviceSpace
            font: Tokens.type.caption2
            color: Tokens.color.textMuted
        }
        ProgressBar {
            Layout.fillWidth: true
            Layout.topMargin: 3
            value: root.shell.usedShare
            Accessible.name: root.shell.deviceSpace
        }
        RowLayout {
            Layout.topMargin: 3
            visible: root.shell.testFolder
            spacing: Tokens.space.hair + 2

            Icon {
                symbol: "folder"
                color: Tokens.color.warning
                side: Tokens.height.symbol - 2
            }
            TextLine {
                objectName: "testFolder"
                text: L10n.text("Folder testowy")
                font: Tokens.type.caption
                color: Tokens.color.warning
            }
        }
    }
    Button {
        objectName: "openFolderButton"
        Layout.leftMargin: -leftPadding // its text is in line with the texts above
        kind: Button.Borderless
        symbol: "folder"
        text: L10n.text("Otwórz w Finderze")
        onClicked: root.shell.openDeviceFolder()
    }
    Divider {
        Layout.fillWidth: true
    }
    ThemesSummary {
        Layout.fillWidth: true
        count: root.shell.themeCount
        onBrowse: root.shell.openThemes()
    }
}
