// The handbook's title and what can be done with it. Stays at the upper edge while the text moves below it.
import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    required property real around
    required property bool english
    required property bool moved ///< text lies below it

    signal findWanted
    signal englishPicked(bool english)

    implicitHeight: row.implicitHeight + 2 * Tokens.space.tight
    color: Tokens.color.content

    RowLayout {
        id: row
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: root.around
        anchors.rightMargin: root.around
        anchors.verticalCenter: parent.verticalCenter
        spacing: Tokens.space.wide

        TextLine {
            Layout.fillWidth: true
            text: L10n.text("Poradnik Rockbox")
            font: Tokens.type.title2
            Accessible.role: Accessible.Heading
        }
        Button {
            objectName: "handbookFind"
            kind: Button.Borderless
            tint: Tokens.color.text
            symbol: "magnifyingglass"
            toolTip: L10n.text("Znajdź w poradniku")
            onClicked: root.findWanted()
        }
        Switch {
            objectName: "handbookLanguage"
            text: L10n.text("English")
            checked: root.english
            onToggled: root.englishPicked(checked)
        }
    }
    Divider {
        anchors.bottom: parent.bottom
        width: parent.width
        visible: root.moved
    }
}
