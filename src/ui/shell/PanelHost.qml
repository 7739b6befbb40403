// Shows the questions for files and folders: the desktop's dialogs, and before them, where both will do, which it is to
// be.
import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property DesktopPanels panels

    function show(kind: int) {
        if (kind === DesktopPanels.ChooseFiles) {
            files.open();
        } else if (kind === DesktopPanels.ChooseFolder) {
            folder.open();
        } else if (kind === DesktopPanels.ChoosePictures) {
            pictures.open();
        } else if (kind === DesktopPanels.ChooseArchives) {
            archives.open();
        } else {
            choice.open();
        }
    }

    /// Follows the language: an open question stays while the window's content is made anew.
    function shown(text: string): string {
        return Language.code === "pl" ? text : L10n.text(text);
    }

    Connections {
        target: root.panels
        function onAsked(kind: int) {
            root.show(kind);
        }
    }

    component FilePanel: FileDialog {
        id: dialog

        required property DesktopPanels panels

        title: L10n.text(dialog.panels.message === "" ? dialog.panels.prompt : dialog.panels.message)
        acceptLabel: L10n.text(dialog.panels.prompt)
        fileMode: dialog.panels.multiple ? FileDialog.OpenFiles : FileDialog.OpenFile
        onAccepted: dialog.panels.answer(dialog.selectedFiles)
        onRejected: dialog.panels.cancel()
    }

    FilePanel {
        id: files
        panels: root.panels
        currentFolder: root.panels.startFolder
    }
    FilePanel {
        id: pictures
        panels: root.panels
        currentFolder: root.panels.picturesFolder
        nameFilters: [root.shown("Obrazy") + " (" + root.panels.picturePatterns + ")"]
    }
    FilePanel {
        id: archives
        panels: root.panels
        currentFolder: root.panels.downloadsFolder
        nameFilters: [root.shown("Paczki motywów") + " (" + root.panels.archivePatterns + ")"]
    }
    FolderDialog {
        id: folder
        title: L10n.text(root.panels.message === "" ? root.panels.prompt : root.panels.message)
        acceptLabel: L10n.text(root.panels.prompt)
        currentFolder: root.panels.startFolder
        onAccepted: root.panels.answer([folder.selectedFolder])
        onRejected: root.panels.cancel()
    }

    Sheet {
        id: choice

        readonly property int none: -1
        property int chosen: none

        function go(kind: int) {
            choice.chosen = kind;
            choice.close();
        }

        title: root.shown(root.panels.prompt)
        onAboutToShow: choice.chosen = choice.none
        onOpened: folderButton.forceActiveFocus(Qt.PopupFocusReason)
        // The dialog comes once the sheet has given the focus back: it would otherwise lose its own to the window.
        onClosed: choice.chosen === choice.none ? root.panels.cancel() : root.show(choice.chosen)

        contentItem: ColumnLayout {
            spacing: Tokens.space.regular

            TextBlock {
                Layout.preferredWidth: 320
                text: choice.title
                font: Tokens.type.title2
                color: Tokens.color.text
                Accessible.role: Accessible.Heading
            }
            TextBlock {
                Layout.preferredWidth: 320
                text: root.shown("Co chcesz wskazać?")
                font: Tokens.type.body
            }
            Button {
                id: folderButton
                objectName: "chooseFolderButton"
                Layout.fillWidth: true
                Layout.topMargin: Tokens.space.hair
                measure: Button.Large
                kind: Button.Prominent
                symbol: "folder"
                text: root.shown("Folder z muzyką…")
                onClicked: choice.go(DesktopPanels.ChooseFolder)
            }
            Button {
                objectName: "chooseFilesButton"
                Layout.fillWidth: true
                measure: Button.Large
                symbol: "music.note"
                text: root.shown("Pliki audio…")
                onClicked: choice.go(DesktopPanels.ChooseFiles)
            }
            Button {
                Layout.fillWidth: true
                kind: Button.Borderless
                text: root.shown("Anuluj")
                onClicked: choice.close()
            }
        }
    }
}
