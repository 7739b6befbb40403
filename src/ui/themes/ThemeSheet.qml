// A theme in detail.
import QtQuick
import QtQuick.Layouts
import Marlune

DetailSheet {
    id: root

    required property ThemeSheetPresenter theme

    title: root.theme.name
    wanted: root.theme.wanted
    onDismissed: root.theme.dismiss()

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 160
        radius: Tokens.radius.card
        color: Tokens.color.card
        border.color: Tokens.color.line

        Icon {
            anchors.centerIn: parent
            symbol: "paintbrush"
            color: Tokens.color.textMuted
            side: 40
        }
    }
    TextBlock {
        Layout.fillWidth: true
        text: root.theme.source
        font: Tokens.type.caption
    }
    Fact {
        name: L10n.text("Autor / zgłaszający w katalogu")
        value: root.theme.author
    }
    Fact {
        name: L10n.text("Rozdzielczość iPoda Video")
        value: "320 × 240"
    }

    component Fact: RowLayout {
        id: fact

        required property string name
        required property string value

        Layout.fillWidth: true
        spacing: Tokens.space.wide

        TextBlock {
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            text: fact.name
        }
        TextBlock {
            Layout.fillWidth: true
            text: fact.value
            color: Tokens.color.text
            horizontalAlignment: Text.AlignRight
            maximumLineCount: 3
            elide: Text.ElideRight
        }
    }
}
