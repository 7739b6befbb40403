// The menus at the left and the button that looks for devices again at the right.
import QtQuick
import QtQuick.Templates as T
import Marlune

Rectangle {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell

    signal quit

    function openFirstMenu() {
        (menus.itemAt(0) as MenuBarItem).triggered();
    }

    implicitHeight: Tokens.height.regular + Tokens.space.tight
    color: Tokens.color.window

    Shortcut {
        sequence: "F10"
        onActivated: root.openFirstMenu()
    }
    Connections {
        target: FocusGuide
        function onMenusWanted() {
            root.openFirstMenu();
        }
    }
    T.MenuBar {
        id: menus
        anchors.left: parent.left
        anchors.leftMargin: Tokens.space.tight
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: contentWidth
        implicitHeight: contentHeight
        delegate: MenuBarItem {}
        contentItem: Row {
            Repeater {
                model: menus.contentModel
            }
        }

        Menu {
            title: L10n.text("&Plik")
            T.Action {
                text: L10n.text("Dodaj muzykę…")
                shortcut: "Ctrl+O"
                enabled: !root.model.busy
                onTriggered: root.model.importMusic()
            }
            T.Action {
                text: L10n.text("Zakończ")
                shortcut: "Ctrl+Q"
                onTriggered: root.quit()
            }
        }
        LanguageMenu {}
        Menu {
            title: L10n.text("&iPod")
            T.Action {
                text: L10n.text("Wybierz urządzenie…")
                enabled: !root.model.busy
                onTriggered: root.model.chooseDevice()
            }
            T.Action {
                text: L10n.text("Odśwież")
                shortcut: "Ctrl+R"
                onTriggered: root.model.refresh()
            }
            T.Action {
                text: L10n.text("Wgraj muzykę")
                enabled: root.shell.canTransfer
                onTriggered: root.model.transferQueue()
            }
            T.Action {
                text: L10n.text("Wysuń iPoda")
                enabled: root.shell.canEject
                onTriggered: root.model.eject()
            }
        }
    }
    Button {
        objectName: "refreshButton"
        anchors.right: parent.right
        anchors.rightMargin: Tokens.space.tight
        anchors.verticalCenter: parent.verticalCenter
        kind: Button.Borderless
        tint: Tokens.color.text
        symbol: "arrow.clockwise"
        toolTip: L10n.text("Odśwież urządzenie")
        enabled: !root.model.busy
        onClicked: root.model.refresh()
    }
}
