// How many albums stand beside each other, how wide their cards are, and where keys lead from one.
import QtQuick
import Marlune

Item {
    id: root

    required property real tileSize ///< the least width of a card
    required property int rowsOfAPage

    readonly property int spacing: 20
    readonly property int rowSpacing: 23
    readonly property int around: 10
    readonly property int room: Math.floor(root.width) - 2 * root.around
    readonly property int count: Math.max(1, Math.floor((root.room + root.spacing) / (root.tileSize + root.spacing)))
    readonly property int cardWidth: Math.floor((root.room - (root.count - 1) * root.spacing) / root.count)
    property int decodeSide: 0 ///< the width of a card once it rests

    /// How far a key leads from an album of so many: whole rows, as far as there are, and steps.
    function stepsFrom(from: int, albums: int): var {
        const above = Math.floor(from / root.count);
        const below = Math.floor((albums - 1 - from) / root.count);
        const rows = wanted => Math.max(-above, Math.min(wanted, below)) * root.count;
        return {
            [Qt.Key_Left]: -1,
            [Qt.Key_Right]: 1,
            [Qt.Key_Up]: rows(-1),
            [Qt.Key_Down]: rows(1),
            [Qt.Key_PageUp]: rows(-root.rowsOfAPage),
            [Qt.Key_PageDown]: rows(root.rowsOfAPage),
            [Qt.Key_Home]: -albums,
            [Qt.Key_End]: albums
        };
    }

    onCardWidthChanged: root.decodeSide === 0 && root.width > 0 ? root.decodeSide = root.cardWidth : settle.restart()

    Timer {
        id: settle
        interval: Tokens.motion.settle
        onTriggered: root.decodeSide = root.cardWidth
    }
}
