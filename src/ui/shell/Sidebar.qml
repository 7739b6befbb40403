// The program's name and its sections. The sections are one stop for the Tab key; the arrows open them.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    required property SectionListModel sections

    readonly property int usualWidth: 205
    readonly property int widest: 260 ///< for large text; longer titles are cut

    function open(row: int) {
        if (row >= 0 && row < rows.count) {
            rows.itemAt(row).forceActiveFocus(Qt.TabFocusReason);
            root.sections.open(row);
        }
    }

    implicitWidth: Math.min(root.widest, Math.max(root.usualWidth, Math.ceil(list.implicitWidth) + 24))
    color: Tokens.color.sidebar

    ColumnLayout {
        anchors.fill: parent
        spacing: 30

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: 22
            Layout.leftMargin: 19
            Layout.rightMargin: 19
            spacing: Tokens.space.regular

            Image {
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: 2
                Layout.preferredWidth: 40
                Layout.preferredHeight: 40
                source: "qrc:/icons/marlune.svg"
                sourceSize.width: 40
                sourceSize.height: 40
                Accessible.ignored: true
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0

                TextLine {
                    Layout.fillWidth: true
                    text: L10n.text("Marlune")
                    font: Tokens.type.of(23, Font.Bold)
                }
                Text {
                    Layout.fillWidth: true
                    Layout.maximumWidth: 100 * Tokens.type.scale // two even lines
                    text: L10n.text("Muzyka. Motywy. Twój iPod.")
                    textFormat: Text.PlainText
                    font: Tokens.type.of(10, Font.Normal)
                    color: Tokens.color.textMuted
                    wrapMode: Text.Wrap
                }
            }
        }
        ColumnLayout {
            id: list
            Layout.fillWidth: true
            Layout.leftMargin: Tokens.space.regular
            Layout.rightMargin: Tokens.space.regular
            spacing: 7
            Accessible.role: Accessible.PageTabList
            Accessible.name: L10n.text("Działy")

            Repeater {
                id: rows
                model: root.sections

                SidebarRow {
                    required property int index

                    Layout.fillWidth: true
                    onClicked: root.sections.open(index)
                    Keys.onUpPressed: root.open(index - 1)
                    Keys.onDownPressed: root.open(index + 1)
                }
            }
        }
        Item {
            Layout.fillHeight: true
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.margins: 20
            spacing: 5

            Text {
                Layout.fillWidth: true
                text: L10n.text("Twoja muzyka, na własność.")
                textFormat: Text.PlainText
                font: Tokens.type.of(12, Font.Medium)
                color: Tokens.color.text
                wrapMode: Text.Wrap
            }
            Text {
                Layout.fillWidth: true
                text: L10n.text("Zaprojektowany dla Rockbox.")
                textFormat: Text.PlainText
                font: Tokens.type.caption2
                color: Tokens.color.textMuted
                wrapMode: Text.Wrap
            }
        }
    }
}
