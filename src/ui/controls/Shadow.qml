// A soft shadow below its parent, which it lies behind. One small stretched picture, shared by all of one shape.
import QtQuick
import Marlune

BorderImage {
    id: root

    property int around: Tokens.radius.cover ///< the parent's corner
    property int blur: 14
    property int drop: 4
    property real strength: Tokens.color.coverShadow

    readonly property int inset: 2 * root.blur + root.around

    z: -1
    anchors.fill: parent
    anchors.leftMargin: -root.blur
    anchors.rightMargin: -root.blur
    anchors.topMargin: root.drop - root.blur
    anchors.bottomMargin: -root.drop - root.blur
    source: "image://shadow/" + root.around + "/" + root.blur + "/" + Screen.devicePixelRatio
    border.left: root.inset
    border.right: root.inset
    border.top: root.inset
    border.bottom: root.inset
    opacity: root.strength
    Accessible.ignored: true
}
