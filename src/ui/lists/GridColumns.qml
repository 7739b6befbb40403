// How many tiles of a grid stand beside each other, how wide they are, and where keys lead from one.
import QtQuick
import Marlune

Item {
    id: root

    required property real tileSize ///< the least width of a tile
    required property int rowsOfAPage

    property int spacing: 20
    property int around: 10

    readonly property int room: Math.floor(root.width) - 2 * root.around
    readonly property int count: Math.max(1, Math.floor((root.room + root.spacing) / (root.tileSize + root.spacing)))
    readonly property int tileWidth: Math.floor((root.room - (root.count - 1) * root.spacing) / root.count)
    property int decodeSide: 0 ///< the width of a tile once it rests

    /// How far a key leads from one of so many tiles: whole rows, as far as there are, and steps.
    function stepsFrom(from: int, tiles: int): var {
        const above = Math.floor(from / root.count);
        const below = Math.floor((tiles - 1 - from) / root.count);
        const rows = wanted => Math.max(-above, Math.min(wanted, below)) * root.count;
        return {
            [Qt.Key_Left]: -1,
            [Qt.Key_Right]: 1,
            [Qt.Key_Up]: rows(-1),
            [Qt.Key_Down]: rows(1),
            [Qt.Key_PageUp]: rows(-root.rowsOfAPage),
            [Qt.Key_PageDown]: rows(root.rowsOfAPage),
            [Qt.Key_Home]: -tiles,
            [Qt.Key_End]: tiles
        };
    }

    onTileWidthChanged: root.decodeSide === 0 && root.width > 0 ? root.decodeSide = root.tileWidth : settle.restart()

    Timer {
        id: settle
        interval: Tokens.motion.settle
        onTriggered: root.decodeSide = root.tileWidth
    }
}
