// One drawn iPod, in the middle of its width and as high as its body; on its screen, a picture where there is one.
//
// While the drawing for another size or finish is being made, the one before stays.
import QtQuick
import Marlune

Item {
    id: root

    required property string profileId
    property string finish ///< in place of the profile's own
    property url preview
    property real maxHeight: 370

    readonly property bool pictured: figure.hasScreen && String(root.preview) !== ""

    implicitHeight: figure.body.height
    Accessible.role: Accessible.Graphic
    Accessible.name: figure.label

    IPodFigure {
        id: figure
        profileId: root.profileId
        finish: root.finish
        width: root.width
        maxHeight: root.maxHeight
        pixelRatio: Screen.devicePixelRatio
    }
    Item {
        id: body
        x: Math.round((root.width - width) / 2 * figure.pixelRatio) / figure.pixelRatio
        width: figure.body.width
        height: figure.body.height

        Image {
            id: kept
            x: fresh.x
            y: fresh.y
            width: fresh.width
            height: fresh.height
            visible: fresh.status !== Image.Ready
            asynchronous: true
        }
        Image {
            id: fresh
            x: -figure.margin
            y: -figure.margin
            width: body.width + 2 * figure.margin
            height: body.height + 2 * figure.margin
            asynchronous: true
            source: root.pictured ? figure.blankAddress : figure.litAddress
            onStatusChanged: {
                if (status === Image.Ready) {
                    kept.source = source;
                }
            }
        }
        ThemeImage {
            x: figure.screen.x
            y: figure.screen.y
            width: figure.screen.width
            height: figure.screen.height
            visible: root.pictured
            url: root.pictured ? root.preview : ""
            ink: figure.ink
            silent: true

            Image {
                anchors.fill: parent
                asynchronous: true
                source: root.pictured ? figure.glassAddress : ""
            }
        }
    }
}
