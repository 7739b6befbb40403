// A page as a column. In a window too low for it the page is scrolled as a whole, so that what fills it keeps its room.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Flickable {
    id: root

    required property int around ///< the margin on all sides
    property alias spacing: stack.spacing
    default property alias items: stack.data

    contentHeight: Math.max(height, stack.implicitHeight + 2 * root.around)
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    clip: interactive

    T.ScrollBar.vertical: ScrollBar {}

    ColumnLayout {
        id: stack
        x: root.around
        y: root.around
        width: root.width - 2 * root.around
        height: root.contentHeight - 2 * root.around
    }
}
