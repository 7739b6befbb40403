// A theme in detail: its screens, what they are of, and how it is set up.
import QtQuick
import QtQuick.Layouts
import Marlune

DetailSheet {
    id: root

    required property ThemeSheetPresenter theme

    title: root.theme.name
    titleFont: Tokens.type.title
    spacing: 20
    padding: 25
    closeText: L10n.text("Gotowe")
    broad: Math.round(660 * Tokens.type.scale)
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
    TextBlock {
        objectName: "exampleNote"
        Layout.fillWidth: true
        visible: root.theme.fromCatalogue
        text: L10n.text("To przykład z katalogu; zainstalowana wersja i Twoje ustawienia mogą wyglądać inaczej.")
        font: Tokens.type.caption
    }
    GroupBox {
        Layout.fillWidth: true
        title: L10n.text("Konfiguracja")

        ColumnLayout {
            anchors.fill: parent
            spacing: Tokens.space.tight

            Fact {
                name: L10n.text("Autor / zgłaszający w katalogu")
                value: root.theme.author
            }
            Fact {
                name: L10n.text("Rozdzielczość iPoda Video")
                value: "320 × 240"
            }
            Fact {
                name: L10n.text("Font")
                value: root.theme.font
            }
            Fact {
                name: L10n.text("WPS")
                value: root.theme.wps
            }
            Fact {
                name: L10n.text("SBS")
                value: root.theme.sbs
            }
        }
    }
    TextBlock {
        Layout.fillWidth: true
        text: L10n.text("Motyw aktywujesz na iPodzie: Settings → Theme Settings → Browse Themes.")
        font: Tokens.type.caption
    }
    Flow {
        Layout.fillWidth: true
        spacing: Tokens.space.tight

        Button {
            objectName: "ownPictureButton"
            symbol: "photo"
            text: L10n.text("Dodaj własny zrzut…")
            onClicked: root.theme.choosePicture()
        }
        Button {
            objectName: "revealThemeButton"
            symbol: "folder"
            text: L10n.text("Plik w Finderze")
            onClicked: root.theme.reveal()
        }
        Button {
            objectName: "themeSourceLink"
            visible: root.theme.hasPage
            kind: Button.Borderless
            text: L10n.text("Źródło i autor ↗")
            onClicked: root.theme.openPage()
        }
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
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            maximumLineCount: 3
            elide: Text.ElideRight
        }
    }
}
