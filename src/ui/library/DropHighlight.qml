// Shows that what hangs at the pointer can be let go here.
import QtQuick
import Marlune

Rectangle {
    id: root

    required property bool shown
    required property string title
    required property string detail

    objectName: "dropHighlight"

    radius: Tokens.radius.card
    color: Tokens.color.content
    border.width: 2
    border.color: Tokens.color.accent
    opacity: root.shown ? 0.94 : 0
    visible: opacity > 0
    Behavior on opacity {
        NumberAnimation { duration: Tokens.motion.state }
    }

    EmptyState {
        anchors.fill: parent
        symbol: "arrow.down.to.line"
        title: root.title
        detail: root.detail
    }
}
