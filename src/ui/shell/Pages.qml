// The page of the section that is shown. A page is made when it is first shown, and keeps its state from then on.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Item {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell
    required property LibraryPresenter library
    required property QualityPresenter quality

    component Page: Loader {
        required property bool shown

        anchors.fill: parent
        active: false
        visible: shown
        onShownChanged: if (shown) active = true
        Component.onCompleted: if (shown) active = true
    }

    Page {
        shown: root.shell.musicShown
        sourceComponent: LibraryPage {
            model: root.model
            library: root.library
        }
    }
    Page {
        shown: root.shell.qualityShown
        sourceComponent: QualityPage {
            model: root.model
            quality: root.quality
        }
    }
    Page {
        shown: root.shell.unfinishedShown
        sourceComponent: EmptyState {
            symbol: root.shell.sectionSymbol
            title: L10n.text(root.model.section)
            detail: L10n.text(root.shell.sectionPurpose)
        }
    }
}
