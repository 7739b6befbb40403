// The ring around what has the keyboard's focus. Fills its parent and lies 3 px around it.
import QtQuick
import Marlune

Rectangle {
    id: root

    required property bool shown
    property real around: Tokens.radius.control ///< the parent's own corner

    readonly property int thickness: 3

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -root.thickness
    radius: root.around + root.thickness
    color: "transparent"
    border.width: root.thickness
    border.color: Tokens.color.focusRing
    visible: root.shown
}
