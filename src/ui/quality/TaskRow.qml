// One task of the quality page: what it is about, its controls, and a note below them.
import QtQuick
import QtQuick.Layouts
import Marlune

GridLayout {
    id: root

    required property string title
    property string note
    default property alias controls: flow.data

    readonly property int labelWidth: Math.round(96 * Tokens.type.scale)

    columns: root.width < 4 * root.labelWidth ? 1 : 2
    columnSpacing: Tokens.space.wide
    rowSpacing: Tokens.space.hair

    Item {
        implicitWidth: root.labelWidth
        implicitHeight: Tokens.height.regular
        Layout.alignment: Qt.AlignTop

        TextLine {
            anchors.fill: parent
            verticalAlignment: Text.AlignVCenter
            text: root.title
            font: Tokens.type.subheadlineStrong
            Accessible.role: Accessible.Heading
        }
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: Tokens.space.hair + 2

        Flow {
            id: flow
            Layout.fillWidth: true
            spacing: Tokens.space.tight
        }
        TextBlock {
            Layout.fillWidth: true
            visible: text !== ""
            text: root.note
            font: Tokens.type.caption
        }
    }
}
