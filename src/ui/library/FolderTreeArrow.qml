// The arrow by which a folder is opened and closed. The keyboard's way there is the row.
import QtQuick
import Marlune

Item {
    id: root

    required property bool open

    signal tapped

    width: Tokens.height.symbol + Tokens.space.tight

    Icon {
        anchors.centerIn: parent
        symbol: "chevron.down"
        side: Tokens.height.symbol - 3
        color: area.containsMouse ? Tokens.color.text : Tokens.color.textMuted
        rotation: root.open ? 0 : -90
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: root.tapped()
        onDoubleClicked: root.tapped()
    }
}
