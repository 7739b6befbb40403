// The carousel's window. Black in either look of the desktop; what it shows is made anew for another language.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ApplicationWindow {
    id: root

    required property MarluneModel model
    required property CoverFlowPresenter flow
    required property PlaybackPresenter playback
    required property DesktopPanels panels

    readonly property ColorRoles roles: ColorRoles { dark: true } ///< it is black in the light look too

    property int before: Window.AutomaticVisibility ///< what it was before it filled the screen

    function toggleFullScreen() {
        if (root.visibility === Window.FullScreen) {
            root.visibility = root.before === Window.Maximized ? Window.Maximized : Window.Windowed;
        } else {
            root.before = root.visibility;
            root.visibility = Window.FullScreen;
        }
    }
    objectName: "coverFlowWindow"
    transientParent: null // a window like any other: it may lie below the main one
    minimumWidth: 800
    minimumHeight: 640
    title: "Cover Flow"
    color: "black"
    font: Tokens.type.body
    onClosing: root.flow.dismiss()
    Component.onCompleted: {
        // Once: afterwards it lies as the user puts it.
        root.width = Math.min(1000, Screen.desktopAvailableWidth);
        root.height = Math.min(740, Screen.desktopAvailableHeight);
        root.x = Screen.virtualX + Math.round((Screen.width - root.width) / 2);
        root.y = Screen.virtualY + Math.round((Screen.height - root.height) / 2);
        root.visible = true;
        root.requestActivate();
    }

    Shortcut {
        sequences: ["F11", "Ctrl+Meta+F"]
        onActivated: root.toggleFullScreen()
    }

    Loader {
        id: content

        function build() {
            content.setSource("CoverFlowView.qml", {
                flow: root.flow,
                playback: root.playback,
                roles: root.roles,
                fullScreen: Qt.binding(() => root.visibility === Window.FullScreen)
            });
        }

        objectName: "content"
        anchors.fill: parent
        focus: true
        Component.onCompleted: content.build()

        Connections {
            target: content.item as CoverFlowView
            function onFullScreenToggled() {
                root.toggleFullScreen();
            }
            function onCloseWanted() {
                root.close();
            }
        }
    }

    // What is said and asked while this window is in front is said and asked in it.
    AlertDialog {
        message: Language.code === "pl" ? root.model.alert : L10n.text(root.model.alert)
        onDismissed: root.model.dismissAlert()
    }
    PanelHost {
        anchors.fill: parent
        panels: root.panels
        asksHere: root.active
    }
}
