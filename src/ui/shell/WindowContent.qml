// All that the window shows: menus above, sections at the left, the chosen page with the transfer bar, the device at
// the right; and the sheets over it. Made anew for another language.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
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
    required property PlaybackPresenter playback

    /// Where the keyboard goes on after the language was chosen in the sidebar, or in a menu.
    function takeFocus(byPicker: bool) {
        sidebar.takeFocus(byPicker);
    }

    spacing: 0

    TopBar {
        Layout.fillWidth: true
        model: root.model
        shell: root.shell
        onQuit: root.Window.window.close()
    }
    Divider {
        Layout.fillWidth: true
    }
    RowLayout {
        spacing: 0

        Sidebar {
            id: sidebar
            Layout.fillHeight: true
            Layout.preferredWidth: implicitWidth
            sections: root.shell.sections
        }
        Divider {
            Layout.fillHeight: true
            vertical: true
        }
        ColumnLayout {
            spacing: 0

            Pages {
                Layout.fillWidth: true
                Layout.fillHeight: true
                model: root.model
                shell: root.shell
                device: root.device
                library: root.library
                playlists: root.playlists
                backups: root.backups
                quality: root.quality
                themes: root.themes
            }
            Divider {
                Layout.fillWidth: true
            }
            MiniPlayer {
                Layout.fillWidth: true
                playback: root.playback
            }
            ClosingNotice {
                Layout.fillWidth: true
                visible: root.shell.closing
                onStay: root.shell.stayOpen()
            }
            TransferBar {
                Layout.fillWidth: true
                model: root.model
                shell: root.shell
            }
        }
        Divider {
            Layout.fillHeight: true
            visible: root.shell.inspectorShown
            vertical: true
        }
        Inspector {
            Layout.fillHeight: true
            Layout.preferredWidth: 285
            visible: root.shell.inspectorShown
            model: root.model
            shell: root.shell
        }
    }

    AlbumDetailView {
        objectName: "albumSheet"
        album: root.albumSheet
    }
    CoverSearchView {
        objectName: "coverSearchSheet"
        search: root.coverSearch
    }
    ThemeDetailView {
        objectName: "themeSheet"
        theme: root.themeSheet
    }
}
