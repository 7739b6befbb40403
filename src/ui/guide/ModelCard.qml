// One model of iPod: its drawing, its name, and what the firmware can do on it.
import QtQuick
import Marlune

Item {
    id: root

    required property string profileId
    required property string name
    required property string support
    required property bool supported

    readonly property int frame: 195

    Accessible.role: Accessible.ListItem
    Accessible.name: L10n.text(root.name) + ", " + L10n.text(root.support)

    Item {
        id: frame
        width: root.width
        height: root.frame

        IPodIllustration {
            anchors.centerIn: parent
            width: 120
            maxHeight: 190
            profileId: root.profileId
            Accessible.ignored: true
        }
    }
    Text {
        id: title
        y: frame.height + Tokens.space.tight
        width: root.width
        text: L10n.text(root.name)
        textFormat: Text.PlainText
        font: Tokens.type.headline
        color: Tokens.color.text
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
    Text {
        y: title.y + title.height + 2
        width: root.width
        text: L10n.text(root.support)
        textFormat: Text.PlainText
        font: Tokens.type.caption
        color: root.supported ? Tokens.color.accent : Tokens.color.textMuted
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
