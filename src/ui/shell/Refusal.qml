// The whole window of a program that cannot start: why, and a way out.
import QtQuick
import QtQuick.Window
import Marlune

Window {
    id: root

    required property string reason

    width: 420
    height: words.implicitHeight + close.height + 3 * Tokens.space.wide
    visible: true
    title: L10n.text("Marlune")
    color: Tokens.color.window

    Text {
        id: words
        x: Tokens.space.wide
        y: Tokens.space.wide
        width: root.width - 2 * Tokens.space.wide
        text: L10n.text(root.reason)
        textFormat: Text.PlainText
        font: Tokens.type.body
        color: Tokens.color.text
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Button {
        id: close
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Tokens.space.wide
        kind: Button.Prominent
        text: L10n.text("OK")
        focus: true
        onClicked: root.close()
        Keys.onReturnPressed: root.close()
        Keys.onEscapePressed: root.close()
    }
}
