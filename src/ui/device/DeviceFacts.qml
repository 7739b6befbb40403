// Labels with their values: in two columns where there is room, else in one.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Grid {
    id: root

    required property var labels ///< texts, translated here
    required property var values ///< texts, one for each label
    required property real room ///< the width that it will have: its own follows its layout, which asks for its height

    readonly property int lineHeight: Math.ceil(1.25 * Tokens.type.subheadlineStrong.pixelSize)
    readonly property int lines: Math.ceil(root.labels.length / root.columns)
    readonly property real wholeHeight: root.lines * (root.lineHeight + root.rowSpacing) - root.rowSpacing
        + 2 * root.padding
    readonly property real cellWidth: (root.room - 2 * root.padding - (root.columns - 1) * root.columnSpacing)
        / root.columns

    columns: root.room >= 430 * Tokens.type.scale ? 2 : 1
    flow: Grid.LeftToRight
    padding: 7
    rowSpacing: 14
    columnSpacing: Tokens.space.group

    Repeater {
        model: root.labels

        Item {
            id: fact

            required property string modelData
            required property int index

            width: root.cellWidth
            height: root.lineHeight
            Accessible.role: Accessible.StaticText
            Accessible.name: label.text + ": " + value.text

            TextLine {
                id: label
                width: Math.min(implicitWidth, fact.width / 2)
                text: L10n.text(fact.modelData)
                font: Tokens.type.caption
                color: Tokens.color.textMuted
                Accessible.ignored: true
            }
            TextLine {
                id: value
                anchors.right: parent.right
                anchors.baseline: label.baseline
                width: Math.min(implicitWidth, fact.width - label.width - Tokens.space.tight)
                text: root.values[fact.index] ?? ""
                font: Tokens.type.subheadlineStrong
                Accessible.ignored: true
            }
        }
    }
}
