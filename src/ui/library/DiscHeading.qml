// The line above the tracks of a disc. The row that it lies in speaks for it.
import QtQuick
import Marlune

Item {
    id: root

    required property string text

    Row {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Tokens.space.hair + 2
        spacing: Tokens.space.hair + 2

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "opticaldisc"
        }
        TextLine {
            text: root.text
            font: Tokens.type.headline
            Accessible.ignored: true
        }
    }
}
