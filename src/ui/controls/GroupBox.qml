// What belongs together, on a card below its title.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.GroupBox {
    id: root

    implicitWidth: Math.max(heading.implicitWidth, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: Tokens.space.regular
    topPadding: heading.height + Tokens.space.tight + padding
    Accessible.name: root.title

    label: TextBlock {
        id: heading
        width: root.width
        text: root.title
        font: Tokens.type.subheadlineStrong
        color: Tokens.color.text
        Accessible.ignored: true // said by the group
    }
    background: Rectangle {
        y: heading.height + Tokens.space.tight
        width: root.width
        height: root.height - y
        radius: Tokens.radius.card
        color: Tokens.color.card
        border.color: Tokens.color.line
    }
}
