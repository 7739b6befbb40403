// All iPods that there were, side by side, with what the firmware can do on them.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property real around
    required property real headRoom ///< above, for the page's head

    readonly property alias view: grid
    readonly property int columnSpacing: 20
    readonly property int rowSpacing: 26
    readonly property real narrowest: 150 * Math.max(1, Tokens.type.scale) ///< of a column
    readonly property real inner: root.width - 2 * root.around
    readonly property int columns: Math.max(1,
        Math.floor((root.inner + root.columnSpacing) / (root.narrowest + root.columnSpacing)))

    ColumnLayout {
        id: head
        x: root.around
        y: grid.originY - grid.contentY - height - Tokens.space.wide
        z: 1
        width: root.inner
        spacing: Tokens.space.regular

        TextBlock {
            Layout.fillWidth: true
            text: L10n.text("Wbudowane ilustracje wszystkich generacji. Grafika nie oznacza zgodności: "
                + "Marlune zarządza dyskami z Rockbox, a touch, shuffle i nowsze nano go nie obsługują.")
            font: Tokens.type.caption
        }
        TextLine {
            Layout.fillWidth: true
            text: L10n.text("Wszystkie modele")
            font: Tokens.type.title2
            Accessible.role: Accessible.Heading
        }
    }
    FontMetrics {
        id: names
        font: Tokens.type.headline
    }
    FontMetrics {
        id: remarks
        font: Tokens.type.caption
    }
    GridView {
        id: grid
        objectName: "modelGallery"
        x: root.around
        width: Math.ceil(root.inner + root.columnSpacing) // the last column's spacing lies beyond the page's
        height: root.height
        topMargin: root.headRoom + head.height + Tokens.space.wide
        onTopMarginChanged: if (contentY <= originY) contentY = originY - topMargin
        bottomMargin: Tokens.space.wide
        cellWidth: Math.floor((root.inner + root.columnSpacing) / root.columns)
        cellHeight: 195 + Tokens.space.tight + 2 + Math.ceil(2 * names.lineSpacing + 3 * remarks.lineSpacing)
            + root.rowSpacing
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        activeFocusOnTab: true
        model: IPodModels.all
        Accessible.role: Accessible.List
        Accessible.name: L10n.text("Wszystkie modele")
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width
            height: root.height
        }
        delegate: ModelCard {
            required property var modelData

            profileId: modelData.profileId
            name: modelData.name
            support: modelData.support
            supported: modelData.supported
            width: grid.cellWidth - root.columnSpacing
            height: grid.cellHeight - root.rowSpacing
        }
    }
    FocusRing {
        anchors.margins: 0
        around: 0
        shown: grid.activeFocus
    }
}
