// Asks whether a folder or files are to be chosen, where both will do.
import QtQuick
import QtQuick.Layouts
import Marlune

Sheet {
    id: root

    readonly property int none: -1
    property int chosen: none

    signal picked(kind: int)
    signal cancelled

    function go(kind: int) {
        root.chosen = kind;
        root.close();
    }

    /// Follows the language: the sheet stays while the window's content is made anew.
    function shown(text: string): string {
        return Language.code === "pl" ? text : L10n.text(text);
    }

    onAboutToShow: root.chosen = root.none
    onOpened: folderButton.forceActiveFocus(Qt.PopupFocusReason)
    // The dialog comes once the sheet has given the focus back: it would otherwise lose its own to the window.
    onClosed: root.chosen === root.none ? root.cancelled() : root.picked(root.chosen)

    contentItem: ColumnLayout {
        spacing: Tokens.space.regular

        TextBlock {
            Layout.preferredWidth: 320
            text: root.title
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
            onClicked: root.go(DesktopPanels.ChooseFolder)
        }
        Button {
            objectName: "chooseFilesButton"
            Layout.fillWidth: true
            measure: Button.Large
            symbol: "music.note"
            text: root.shown("Pliki audio…")
            onClicked: root.go(DesktopPanels.ChooseFiles)
        }
        Button {
            Layout.fillWidth: true
            kind: Button.Borderless
            text: root.shown("Anuluj")
            onClicked: root.close()
        }
    }
}
