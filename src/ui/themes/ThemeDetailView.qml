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

    RowLayout {
        Layout.fillWidth: true
        spacing: 18

        Shot {
            name: L10n.text("Ekran odtwarzania")
            url: root.theme.playingPicture
        }
        Shot {
            name: L10n.text("Menu")
            url: root.theme.menuPicture
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

    component Shot: ColumnLayout {
        id: screen

        required property string name
        required property url url

        Layout.fillWidth: true
        Layout.preferredWidth: 1 // both alike
        Layout.alignment: Qt.AlignTop
        spacing: Tokens.space.tight

        TextLine {
            text: screen.name
            font: Tokens.type.headline
            Accessible.role: Accessible.Heading
        }
        ThemeImage {
            Layout.fillWidth: true
            Layout.preferredHeight: Math.round(width * 3 / 4)
            url: screen.url
        }
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
