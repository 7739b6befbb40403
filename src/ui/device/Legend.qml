// What one colour of a bar stands for.
import QtQuick
import Marlune

Row {
    id: root

    required property color color
    required property string text

    spacing: Tokens.space.hair + 2

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        width: 10
        height: 10
        radius: 3
        color: root.color
        border.color: Tokens.color.line
    }
    Text {
        text: root.text
        textFormat: Text.PlainText
        font: Tokens.type.caption
        color: Tokens.color.text
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
