// Shows the questions for files and folders: the desktop's dialogs, and before them, where both will do, which it is to
// be.
import QtQuick
import QtQuick.Dialogs
import Marlune

Item {
    id: root

    required property DesktopPanels panels
    property bool asksHere: true ///< and not in another window

    readonly property string prompt: root.shown(root.panels.prompt)
    readonly property string question: root.panels.message === "" ? root.prompt : root.shown(root.panels.message)

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
            if (root.asksHere) {
                root.show(kind);
            }
        }
    }

    component FilePanel: FileDialog {
        id: dialog

        required property DesktopPanels panels

        fileMode: dialog.panels.multiple ? FileDialog.OpenFiles : FileDialog.OpenFile
        onAccepted: dialog.panels.answer(dialog.selectedFiles)
        onRejected: dialog.panels.cancel()
    }

    FilePanel {
        id: files
        objectName: "filesDialog"
        panels: root.panels
        title: root.question
        acceptLabel: root.prompt
        currentFolder: root.panels.startFolder
    }
    FilePanel {
        id: pictures
        objectName: "picturesDialog"
        panels: root.panels
        title: root.question
        acceptLabel: root.prompt
        currentFolder: root.panels.picturesFolder
        nameFilters: [root.shown("Obrazy") + " (" + root.panels.picturePatterns + ")"]
    }
    FilePanel {
        id: archives
        objectName: "archivesDialog"
        panels: root.panels
        title: root.question
        acceptLabel: root.prompt
        currentFolder: root.panels.downloadsFolder
        nameFilters: [root.shown("Paczki motywów") + " (" + root.panels.archivePatterns + ")"]
    }
    FolderDialog {
        id: folder
        objectName: "folderDialog"
        title: root.question
        acceptLabel: root.prompt
        currentFolder: root.panels.startFolder
        onAccepted: root.panels.answer([folder.selectedFolder])
        onRejected: root.panels.cancel()
    }

    PlaceChoice {
        id: choice
        objectName: "placeChoice"
        title: root.prompt
        onPicked: kind => root.show(kind)
        onCancelled: root.panels.cancel()
    }
    // Where the dialog is drawn in the window, a click beside it closes it and does nothing else.
    MouseArea {
        id: cover

        readonly property bool isAsked: files.visible || pictures.visible || archives.visible || folder.visible

        anchors.fill: parent
        visible: false
        hoverEnabled: true
        acceptedButtons: Qt.AllButtons
        onWheel: wheel => wheel.accepted = true

        Timer {
            interval: 0 // later: the press that has closed the dialog is still on its way
            running: cover.visible !== cover.isAsked
            onTriggered: cover.visible = cover.isAsked
        }
    }
}
