// One of a few values side by side. One stop for the Tab key; the arrows choose.
//
// The values are texts that stand for themselves and are shown through the text operation. Shrinks the segments'
// margins, not their texts, where the place is narrow.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Item { // a Control's role would be its own
    id: root

    required property string title
    required property var values ///< texts
    property string value

    readonly property int widestMargin: 11
    readonly property int narrowestMargin: 4
    readonly property real minimumWidth: Math.ceil(root.textsWidth) + 2 * root.narrowestMargin * root.values.length

    signal picked(string value)

    function pick(place: int) {
        if (place >= 0 && place < root.values.length) {
            segments.itemAt(place).forceActiveFocus(Qt.TabFocusReason);
            root.picked(root.values[place]);
        }
    }

    function takeFocus() {
        segments.itemAt(root.values.indexOf(root.value))?.forceActiveFocus(Qt.OtherFocusReason);
    }

    readonly property real textsWidth: {
        let sum = 0;
        for (let i = 0; i < segments.count; ++i) {
            sum += (segments.itemAt(i) as Segment)?.textWidth ?? 0;
        }
        return sum;
    }

    implicitWidth: Math.ceil(root.textsWidth) + 2 * root.widestMargin * root.values.length
    implicitHeight: Tokens.height.regular
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.role: Accessible.Grouping
    Accessible.name: root.title
    Keys.onLeftPressed: root.pick(root.values.indexOf(root.value) - 1)
    Keys.onRightPressed: root.pick(root.values.indexOf(root.value) + 1)

    Rectangle {
        anchors.fill: parent
        radius: Tokens.radius.control
        color: Tokens.color.field
    }
    Row {
        Repeater {
            id: segments
            model: root.values

            Segment {
                required property string modelData

                width: textWidth + (root.width - root.textsWidth) / Math.max(1, root.values.length)
                height: root.height
                text: L10n.text(modelData)
                checked: modelData === root.value
                onClicked: root.picked(modelData)
            }
        }
    }
}
