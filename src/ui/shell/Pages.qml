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

    /// No Loader: in Qt 6.4 that makes nothing of a component that is bound to its surroundings.
    component Place: Item {
        id: place

        required property bool shown
        default property Component page
        property Item made: null

        function makeOnce() {
            if (place.shown && !place.made) {
                place.made = place.page.createObject(place, {}) as Item;
            }
        }

        anchors.fill: parent
        visible: shown
        onShownChanged: place.makeOnce()
        Component.onCompleted: place.makeOnce()
    }

    Place {
        shown: root.shell.deviceShown

        DevicePage {
            anchors.fill: parent
            model: root.model
            device: root.device
        }
    }
    Place {
        shown: root.shell.musicShown

        LibraryPage {
            anchors.fill: parent
            model: root.model
            library: root.library
        }
    }
    Place {
        shown: root.shell.playlistsShown

        PlaylistsPage {
            anchors.fill: parent
            model: root.model
            playlists: root.playlists
        }
    }
    Place {
        shown: root.shell.backupsShown

        BackupsPage {
            anchors.fill: parent
            model: root.model
            backups: root.backups
        }
    }
    Place {
        shown: root.shell.qualityShown

        QualityPage {
            anchors.fill: parent
            model: root.model
            quality: root.quality
        }
    }
    Place {
        shown: root.shell.guideShown

        GuidePage {
            anchors.fill: parent
        }
    }
    Place {
        shown: root.shell.unfinishedShown

        EmptyState {
            anchors.fill: parent
            symbol: root.shell.sectionSymbol
            title: L10n.text(root.model.section)
            detail: L10n.text("Tu będzie można oglądać motywy Rockbox i instalować je na iPodzie.")
        }
    }
}
