// A message that has to be read. Open while there is one; its button, Escape and any other way out dismiss it.
import QtQuick
import Marlune

Sheet {
    id: root

    property string message

    readonly property int widest: 420
    readonly property int tallest: 420

    signal dismissed

    title: "Marlune"
    onMessageChanged: root.message === "" ? root.close() : root.open()
    Component.onCompleted: if (root.message !== "") root.open()
    onOpened: accept.forceActiveFocus(Qt.PopupFocusReason)
    onClosed: if (root.message !== "") root.dismissed()

    contentItem: Column {
        spacing: Tokens.space.regular
        Accessible.role: Accessible.AlertMessage
        Accessible.name: root.title + ". " + root.message

        Text {
            id: heading
            width: root.widest
            text: root.title
            textFormat: Text.PlainText
            font: Tokens.type.title2
            color: Tokens.color.text
        }
        Flickable {
            width: root.widest
            height: Math.min(contentHeight, root.tallest)
            contentHeight: body.implicitHeight
            clip: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds

            Text {
                id: body
                objectName: "alertMessage"
                width: parent.width
                text: root.message
                textFormat: Text.PlainText
                font: Tokens.type.body
                color: Tokens.color.text
                wrapMode: Text.Wrap
                lineHeight: 1.2
            }
        }
        Item {
            width: root.widest
            height: accept.height + Tokens.space.hair

            Button {
                id: accept
                objectName: "alertOk"
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                width: Math.max(implicitWidth, 88)
                kind: Button.Prominent
                text: L10n.text("OK")
                onClicked: root.close()
            }
        }
    }
}
