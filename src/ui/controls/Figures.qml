// A number, a time of day or a length whose digits stand under those of others, from the right. The font's own digits
// are of different widths.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Row {
    id: root

    required property string text
    property font font: Tokens.type.caption
    property color color: Tokens.color.textMuted

    readonly property int places: 8

    layoutDirection: Qt.RightToLeft

    TextMetrics {
        id: digit
        font: root.font
        text: "0"
    }
    Repeater {
        model: Math.max(root.places, root.text.length) // of one number: texts change, items do not

        Text {
            required property int index

            width: /\d/.test(text) ? Math.ceil(digit.advanceWidth) : implicitWidth
            text: root.text.charAt(root.text.length - 1 - index)
            textFormat: Text.PlainText
            font: root.font
            color: root.color
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
