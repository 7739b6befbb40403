// The page of the section that is shown. A page is made when it is first shown, and keeps its state from then on.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell
    required property DevicePresenter device
    required property LibraryPresenter library
    required property PlaylistsPresenter playlists
    required property BackupsPresenter backups
    required property QualityPresenter quality
    required property ThemesPresenter themes

    LazyPlace {
        shown: root.shell.deviceShown

        DevicePage {
            anchors.fill: parent
            model: root.model
            device: root.device
        }
    }
    LazyPlace {
        shown: root.shell.musicShown

        LibraryPage {
            anchors.fill: parent
            model: root.model
            library: root.library
        }
    }
    LazyPlace {
        shown: root.shell.playlistsShown

        PlaylistsPage {
            anchors.fill: parent
            model: root.model
            playlists: root.playlists
        }
    }
    LazyPlace {
        shown: root.shell.backupsShown

        BackupsPage {
            anchors.fill: parent
            model: root.model
            backups: root.backups
        }
    }
    LazyPlace {
        shown: root.shell.qualityShown

        QualityPage {
            anchors.fill: parent
            model: root.model
            quality: root.quality
        }
    }
    LazyPlace {
        shown: root.shell.guideShown

        GuidePage {
            anchors.fill: parent
        }
    }
    LazyPlace {
        shown: root.shell.themesShown

        ThemesPage {
            anchors.fill: parent
            model: root.model
            themes: root.themes
        }
    }
}
