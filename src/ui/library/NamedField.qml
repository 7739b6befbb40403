// A field for a line of text, with its name above it.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property string name
    required property string text

    signal edited(string text)
    signal accepted

    Layout.fillWidth: true
    spacing: Tokens.space.hair

    TextLine {
        Layout.fillWidth: true
        text: root.name
        font: Tokens.type.caption
        color: Tokens.color.textMuted
        Accessible.ignored: true
    }
    TextField {
        id: field
        objectName: "field"
        Layout.fillWidth: true
        text: root.text
        Accessible.name: root.name
        onTextEdited: root.edited(text)
        onAccepted: root.accepted()
    }
}
