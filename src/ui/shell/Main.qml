// The window. What it shows is made anew for another language; what is asked meanwhile stays.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ApplicationWindow {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell
    required property DevicePresenter device
    required property LibraryPresenter library
    required property PlaylistsPresenter playlists
    required property BackupsPresenter backups
    required property QualityPresenter quality
    required property ThemesPresenter themes
    required property AlbumSheetPresenter albumSheet
    required property CoverSearchPresenter coverSearch
    required property ThemeSheetPresenter themeSheet
    required property CoverFlowPresenter coverFlow
    required property PlaybackPresenter playback
    required property DesktopPanels panels

    minimumWidth: 1050
    minimumHeight: 690
    title: "Marlune"
    color: Tokens.color.content
    font: Tokens.type.body
    onClosing: close => {
        close.accepted = root.shell.requestClose();
        if (close.accepted) {
            (carousel.item as CoverFlowWindow)?.close(); // first: the program ends with its last window
        }
    }
    Component.onCompleted: {
        root.width = Math.min(1260, Screen.desktopAvailableWidth);
        root.height = Math.min(820, Screen.desktopAvailableHeight);
        root.visible = true;
    }

    Connections {
        target: root.shell
        function onMayCloseNow() {
            root.close();
        }
    }

    Loader {
        id: content

        function build() {
            content.setSource("WindowContent.qml", {
                model: root.model,
                shell: root.shell,
                device: root.device,
                library: root.library,
                playlists: root.playlists,
                backups: root.backups,
                quality: root.quality,
                themes: root.themes,
                albumSheet: root.albumSheet,
                coverSearch: root.coverSearch,
                themeSheet: root.themeSheet,
                playback: root.playback
            });
        }

        objectName: "content"
        anchors.fill: parent
        Component.onCompleted: content.build()
    }

    AlertDialog {
        objectName: "alertDialog"
        message: Language.code === "pl" ? root.model.alert : L10n.text(root.model.alert)
        onDismissed: root.model.dismissAlert()
    }
    PanelHost {
        anchors.fill: parent
        panels: root.panels
        asksHere: !(carousel.item as CoverFlowWindow)?.active
    }
    Loader {
        id: carousel
        active: root.coverFlow.shown
        sourceComponent: Component {
            CoverFlowWindow {
                model: root.model
                flow: root.coverFlow
                playback: root.playback
                panels: root.panels
            }
        }
    }
    Tooltip {}
}
