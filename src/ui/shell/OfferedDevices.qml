// The devices found, while none of them is chosen.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property var names ///< texts

    signal chosen(int place)

    spacing: Tokens.space.tight

    TextBlock {
        Layout.fillWidth: true
        text: L10n.text("Znalezione urządzenia")
        font: Tokens.type.of(13, Font.DemiBold)
        color: Tokens.color.text
        Accessible.role: Accessible.Heading
    }
    // In Qt 6.4 a layout keeps items that a Repeater has deleted while they were hidden.
    Column {
        Layout.fillWidth: true
        spacing: root.spacing

        Repeater {
            model: root.names

            Button {
                required property int index
                required property string modelData

                objectName: "offeredDevice"
                width: parent.width
                symbol: "ipod"
                text: modelData
                onClicked: root.chosen(index)
            }
        }
    }
}
