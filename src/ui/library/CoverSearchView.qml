// The search for an album's cover on the network: what is searched for, what was found, and a way to take it.
import QtQuick
import QtQuick.Layouts
import Marlune

PanelSheet {
    id: root

    required property CoverSearchPresenter search

    readonly property real listRoom: root.bodyRoom - note.implicitHeight - form.implicitHeight
        - outcome.implicitHeight - 3 * Tokens.space.regular
    readonly property bool untried: root.search.message.length === 0

    title: L10n.text("Znajdź okładkę")
    broad: Math.round(640 * Tokens.type.scale)
    wanted: root.search.wanted
    firstFocus: searchButton
    onDismissed: root.search.dismiss()

    TextBlock {
        id: note
        Layout.fillWidth: true
        text: L10n.text("MusicBrainz / Cover Art Archive · wysyłamy wyłącznie wykonawcę i tytuł. Wybierz grafikę pasującą do Twojego wydania.")
        font: Tokens.type.caption
    }
    RowLayout {
        id: form
        spacing: Tokens.space.regular

        NamedField {
            objectName: "artistField"
            name: L10n.text("Wykonawca")
            text: root.search.artist
            onEdited: text => root.search.artist = text
            onAccepted: root.search.search()
        }
        NamedField {
            objectName: "albumField"
            name: L10n.text("Album")
            text: root.search.albumTitle
            onEdited: text => root.search.albumTitle = text
            onAccepted: root.search.search()
        }
        Button {
            id: searchButton
            objectName: "searchButton"
            Layout.alignment: Qt.AlignBottom
            kind: Button.Prominent
            symbol: "magnifyingglass"
            text: L10n.text("Szukaj")
            onClicked: root.search.search()
        }
    }
    RowLayout {
        spacing: Tokens.space.tight

        ProgressBar {
            Layout.preferredWidth: 60
            visible: root.search.downloading
            indeterminate: true
            Accessible.name: outcome.text
        }
        TextBlock {
            id: outcome
            objectName: "searchMessage"
            Layout.fillWidth: true
            text: root.search.downloading ? L10n.text("Pobieram okładkę…")
                : root.search.results.count > 0 ? root.search.message : ""
            font: Tokens.type.caption
            Accessible.ignored: text === ""
        }
    }
    Item {
        Layout.fillWidth: true
        Layout.preferredHeight: Math.max(120, Math.min(root.listRoom, Math.round(430 * Tokens.type.scale)))

        EmptyState {
            objectName: "searchState"
            anchors.fill: parent
            visible: root.search.results.count === 0 && !root.search.searching
            symbol: root.untried ? "photo" : "photo.badge.exclamationmark"
            titleFont: Tokens.type.headline
            title: root.untried ? L10n.text("Tu pojawią się znalezione wydania") : root.search.message
            detail: root.untried ? L10n.text("Popraw nazwy, jeśli trzeba, i naciśnij „Szukaj”.") : ""
        }
        Column {
            anchors.centerIn: parent
            visible: root.search.searching
            spacing: Tokens.space.regular

            ProgressBar {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 160
                indeterminate: true
                Accessible.name: waiting.text
            }
            TextLine {
                id: waiting
                objectName: "searchingText"
                text: L10n.text("Szukam wydań…")
                color: Tokens.color.textMuted
            }
        }
        CoverResultList {
            anchors.fill: parent
            search: root.search
            visible: root.search.results.count > 0
        }
    }
}
