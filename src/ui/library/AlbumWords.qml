// What stands below an album's cover: its names, its facts, and how many discs it has. The card speaks for it.
import QtQuick
import Marlune

Column {
    id: root

    required property string albumTitle
    required property string artist
    required property string format
    required property bool highResolution
    required property string countAndSize
    required property string discs ///< may be empty

    spacing: 2

    TextLine {
        width: parent.width
        text: root.albumTitle
        font: Tokens.type.bodyStrong
        Accessible.ignored: true
    }
    TextLine {
        width: parent.width
        text: root.artist
        font: Tokens.type.caption
        color: Tokens.color.textMuted
        Accessible.ignored: true
    }
    AlbumFacts {
        width: parent.width
        format: root.format
        highResolution: root.highResolution
        countAndSize: root.countAndSize
    }
    Row {
        visible: root.discs !== ""
        spacing: Tokens.space.hair

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: root.discs === "" ? "" : "opticaldisc"
            color: Tokens.color.textMuted
            side: Tokens.height.symbol - 3
        }
        TextLine {
            width: Math.min(implicitWidth, root.width - Tokens.height.symbol)
            text: root.discs
            font: Tokens.type.caption2
            color: Tokens.color.textMuted
            Accessible.ignored: true
        }
    }
}
