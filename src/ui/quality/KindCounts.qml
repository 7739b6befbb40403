// How many findings there are of each kind, at a glance.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Flow {
    id: root

    required property var kinds ///< texts
    required property var counts ///< texts, one for each kind

    readonly property real wholeWidth: {
        let sum = 0;
        for (let i = 0; i < chips.count; ++i) {
            sum += (chips.itemAt(i)?.implicitWidth ?? 0) + (i > 0 ? root.spacing : 0);
        }
        return Math.ceil(sum);
    }

    spacing: Tokens.space.tight

    Repeater {
        id: chips
        model: root.kinds

        Rectangle {
            id: chip

            required property string modelData
            required property int index

            objectName: "kindCount"
            implicitWidth: words.width + 2 * Tokens.space.tight
            implicitHeight: Tokens.height.small
            radius: Tokens.radius.control
            color: Tokens.color.field
            Accessible.role: Accessible.StaticText
            Accessible.name: L10n.text(chip.modelData) + ": " + count.text

            Row {
                id: words
                anchors.centerIn: parent
                spacing: Tokens.space.hair + 1

                KindIcon {
                    anchors.verticalCenter: parent.verticalCenter
                    kind: chip.modelData
                    side: Tokens.height.symbol - 2
                }
                Text {
                    text: L10n.text(chip.modelData)
                    textFormat: Text.PlainText
                    font: Tokens.type.caption
                    color: Tokens.color.textMuted
                    Accessible.ignored: true
                }
                Text {
                    id: count
                    text: root.counts[chip.index] ?? ""
                    textFormat: Text.PlainText
                    font: Tokens.type.of(12, Font.DemiBold)
                    color: Tokens.color.text
                    Accessible.ignored: true
                }
            }
        }
    }
}
