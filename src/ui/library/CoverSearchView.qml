// The album that a cover is being looked for by hand.
import QtQuick.Layouts
import Marlune

DetailSheet {
    id: root

    required property AlbumSheetPresenter album

    title: L10n.text("Znajdź okładkę")
    wanted: root.album.wanted
    onDismissed: root.album.dismiss()

    AlbumSummary {
        Layout.fillWidth: true
        album: root.album
    }
}
