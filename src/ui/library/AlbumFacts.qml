// One line below an album's names: its format as a badge, "Hi-Res", how many tracks and how large.
import QtQuick
import Marlune

Row {
    id: root

    required property string format ///< may be empty
    required property bool highResolution
    required property string countAndSize

    height: facts.implicitHeight + 4
    spacing: Tokens.space.hair + 2

    Rectangle {
        id: badge
        visible: root.format !== ""
        anchors.verticalCenter: parent.verticalCenter
        width: badgeText.implicitWidth + 8
        height: facts.implicitHeight + 2
        radius: 4
        color: Tokens.color.field

        Text {
            id: badgeText
            anchors.centerIn: parent
            text: root.format
            textFormat: Text.PlainText
            font: Tokens.type.caption2
            color: Tokens.color.text
        }
    }
    Text {
        id: hiRes
        visible: root.highResolution
        anchors.verticalCenter: parent.verticalCenter
        text: L10n.text("Hi-Res")
        textFormat: Text.PlainText
        font: Tokens.type.of(9, Font.DemiBold)
        color: Tokens.color.warning
    }
    TextLine {
        id: facts
        width: Math.min(implicitWidth, root.width - (root.format !== "" ? badge.width + root.spacing : 0)
            - (root.highResolution ? hiRes.width + root.spacing : 0))
        anchors.verticalCenter: parent.verticalCenter
        text: root.countAndSize
        font: Tokens.type.caption2
        color: Tokens.color.textMuted
        Accessible.ignored: true
    }
}
