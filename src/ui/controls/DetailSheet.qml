// A sheet about one thing that scrolls as a whole where the window is too low for it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

PanelSheet {
    id: root

    default property alias told: body.data

    scrolled: flick

    Flickable {
        id: flick
        objectName: "sheetBody"
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(contentHeight, root.bodyRoom)
        contentHeight: body.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: contentHeight > height
        T.ScrollBar.vertical: ScrollBar {
            parent: root.contentItem.parent
            x: root.width - width
            y: root.topPadding + root.contentItem.height - height
            height: flick.height
        }

        ColumnLayout {
            id: body
            width: parent.width
            spacing: root.spacing
        }
    }
}
