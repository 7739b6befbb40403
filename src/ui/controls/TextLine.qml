// One line of text. Where the place is too narrow it ends in an ellipsis and the pointer shows the whole.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Text {
    id: root

    textFormat: Text.PlainText
    font: Tokens.type.body
    color: Tokens.color.text
    elide: Text.ElideRight
    maximumLineCount: 1

    HoverHandler {
        id: hover
        enabled: root.truncated
    }
    Loader {
        anchors.fill: parent
        active: hover.hovered && root.truncated
        sourceComponent: Tooltip {
            text: root.text
            visible: true
        }
    }
}
