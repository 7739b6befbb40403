// An album's cover, filling a square; without a picture, a quiet square with a disc.
//
// The picture is decoded for `decodeSide`. While one for another side is on its way the one before is shown, stretched.
import QtQuick
import Marlune

Item {
    id: root

    required property string cover ///< name in the cover store, may be empty
    property int decodeSide: Math.round(root.width)
    property bool marked: false ///< a frame in the accent around it
    property string standIn: "opticaldisc" ///< the symbol without a picture

    readonly property string address: root.cover === "" ? ""
        : "image://cover/" + root.cover + "/" + Math.round(1000 * Tokens.radius.cover / Math.max(1, root.decodeSide))
    readonly property bool pictured: fresh.status === Image.Ready ? fresh.implicitWidth > 1
        : kept.status === Image.Ready

    onCoverChanged: kept.source = ""

    Shadow {}
    Rectangle {
        anchors.fill: parent
        radius: Tokens.radius.cover
        color: Tokens.color.card
        visible: !root.pictured
    }
    Icon {
        anchors.centerIn: parent
        visible: !root.pictured && (root.cover === "" || fresh.status === Image.Ready)
        symbol: root.standIn
        color: Tokens.color.textMuted
        side: Math.round(root.width / 4)
    }
    Image {
        id: kept
        anchors.fill: parent
        visible: fresh.status !== Image.Ready
        asynchronous: true
    }
    Image {
        id: fresh
        anchors.fill: parent
        asynchronous: true
        source: root.address
        sourceSize.width: root.decodeSide
        sourceSize.height: root.decodeSide
        onStatusChanged: {
            if (status === Image.Ready && implicitWidth > 1) {
                kept.sourceSize = sourceSize;
                kept.source = source;
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: Tokens.radius.cover
        color: "transparent"
        border.width: root.marked ? 2 : 1
        border.color: root.marked ? Tokens.color.accent : Tokens.color.line
    }
}
