// The playlists on the device, and the making of a new one.
import QtQuick
import QtQuick.Layouts
import Marlune

PageColumn {
    id: root

    required property MarluneModel model
    required property PlaylistsPresenter playlists

    around: 28
    spacing: 22

    PageHeader {
        Layout.fillWidth: true
        title: "Playlisty"
        subtitle: "Zestawy na drogę, spacer i długie wieczory."
    }
    GroupBox {
        Layout.fillWidth: true
        title: L10n.text("Nowa playlista z wybranych albumów i transferów")

        ColumnLayout {
            anchors.fill: parent
            spacing: Tokens.space.tight

            TextBlock {
                objectName: "playlistContent"
                Layout.fillWidth: true
                text: root.playlists.content
                font: Tokens.type.caption
            }
            RowLayout {
                spacing: Tokens.space.tight

                TextField {
                    objectName: "playlistName"
                    Layout.fillWidth: true
                    placeholderText: L10n.text("Nazwa playlisty")
                    text: root.model.playlistName
                    onTextEdited: root.model.playlistName = text
                    onAccepted: if (save.enabled) save.clicked()
                }
                Button {
                    id: save
                    objectName: "savePlaylistButton"
                    text: L10n.text("Zapisz M3U8")
                    enabled: root.playlists.canSave
                    onClicked: root.model.makePlaylist()
                }
            }
        }
    }
    FileList {
        Layout.fillWidth: true
        Layout.fillHeight: true
        files: root.playlists.playlists
        title: L10n.text("Playlisty")
        symbol: "music.note.list"
        actionText: L10n.text("Pokaż")
        emptySymbol: "music.note.list"
        emptyTitle: L10n.text("Twoje składanki pojawią się tutaj")
        emptyDetail: L10n.text("Wgraj muzykę i zapisz playlistę z przesłanych utworów.")
        onChosen: row => root.playlists.reveal(row)
    }
}
