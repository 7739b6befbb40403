// A few words on a picture that say what is special about it. What it lies on speaks for it.
import QtQuick
import Marlune

Rectangle {
    id: root

    required property string text

    implicitWidth: Math.ceil(words.implicitWidth) + 2 * Tokens.space.tight
    implicitHeight: words.implicitHeight + Tokens.space.hair
    radius: height / 2
    color: Tokens.color.accent

    TextLine {
        id: words
        anchors.centerIn: parent
        width: root.width - 2 * Tokens.space.tight
        text: root.text
        font: Tokens.type.caption2
        color: Tokens.color.textOnAccent
        Accessible.ignored: true
    }
}
