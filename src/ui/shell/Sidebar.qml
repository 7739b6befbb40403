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

    /// The keyboard goes on at the language's picker, or at the present section.
    function takeFocus(byPicker: bool) {
        if (byPicker) {
            languages.takeFocus();
        } else {
            rows.itemAt(root.sections.currentRow).forceActiveFocus(Qt.OtherFocusReason);
        }
    }

    implicitWidth: Math.min(root.widest, Math.max(root.usualWidth,
        Math.ceil(list.implicitWidth) + 2 * Tokens.space.regular, Math.ceil(brand.implicitWidth) + 2 * 19,
        languages.minimumWidth + 2 * 18))
    color: Tokens.color.sidebar

    ColumnLayout {
        anchors.fill: parent
        spacing: 30

        Brand {
            id: brand
            Layout.fillWidth: true
            Layout.topMargin: 22
            Layout.leftMargin: 19
            Layout.rightMargin: 19
        }
        Flickable {
            id: flick
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentHeight: list.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            interactive: contentHeight > height
            clip: interactive
            topMargin: interactive ? Tokens.space.hair : 0 // room for the ring
            bottomMargin: topMargin

            ColumnLayout {
                id: list
                x: Tokens.space.regular
                width: flick.width - 2 * x
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
        }
        LanguagePicker {
            id: languages
            Layout.fillWidth: true
            Layout.leftMargin: 18
            Layout.rightMargin: 18
            Layout.bottomMargin: footer.visible ? 0 : 20
        }
        ColumnLayout {
            id: footer
            Layout.fillWidth: true
            Layout.fillHeight: false
            Layout.margins: 20
            // Large text in a low window: the sections come first.
            visible: root.height > brand.implicitHeight + list.implicitHeight + languages.implicitHeight
                + footer.implicitHeight + 22 + 40 + 3 * 30
            spacing: 5

            TextBlock {
                Layout.fillWidth: true
                text: L10n.text("Twoja muzyka, na własność.")
                font: Tokens.type.of(12, Font.Medium)
                color: Tokens.color.text
            }
            TextBlock {
                Layout.fillWidth: true
                text: L10n.text("Zaprojektowany dla Rockbox.")
                font: Tokens.type.caption2
            }
        }
    }
}
