// The search for an album's cover on the network: what is searched for, what was found, and a way to take it.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

PanelSheet {
    id: root

    required property CoverSearchPresenter search

    readonly property int ringRoom: 4
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
        ListView {
            id: view
            objectName: "resultList"
            anchors.fill: parent
            anchors.leftMargin: -root.ringRoom
            anchors.rightMargin: -root.ringRoom
            topMargin: root.ringRoom
            bottomMargin: root.ringRoom
            visible: count > 0
            clip: true
            cacheBuffer: 0 // a row's picture is fetched when the row is made
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: false
            highlightFollowsCurrentItem: false
            model: root.search.results
            onCountChanged: currentIndex = Math.max(0, currentIndex) // none is current after a change of all rows
            Accessible.role: Accessible.List
            Accessible.name: root.title
            T.ScrollBar.vertical: ScrollBar {
                parent: view.parent
                x: view.parent.width + Tokens.space.hair
                height: view.parent.height
            }
            delegate: CoverResultRow {
                id: row

                required property int index

                function walk(to: int) {
                    view.currentIndex = Math.max(0, Math.min(to, view.count - 1));
                    view.currentItem?.forceActiveFocus(Qt.TabFocusReason);
                }

                x: root.ringRoom
                width: view.width - 2 * root.ringRoom
                current: ListView.isCurrentItem
                canDownload: root.search.canDownload
                Component.onCompleted: root.search.results.wantPicture(index)
                onActiveFocusChanged: if (activeFocus && index >= 0) view.currentIndex = index
                onChosen: root.search.download(index)
                onSourceWanted: root.search.openSource(index)
                Keys.onUpPressed: row.walk(index - 1)
                Keys.onDownPressed: row.walk(index + 1)
                Keys.onPressed: event => {
                    event.accepted = event.key === Qt.Key_Home || event.key === Qt.Key_End;
                    if (event.accepted) {
                        row.walk(event.key === Qt.Key_Home ? 0 : view.count - 1);
                    }
                }
            }
        }
    }
}
