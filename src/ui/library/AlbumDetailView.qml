// An album in detail.
import QtQuick.Layouts
import Marlune

DetailSheet {
    id: root

    required property AlbumSheetPresenter album

    title: L10n.text("Szczegóły albumu")
    wanted: root.album.wanted
    onDismissed: root.album.dismiss()

    AlbumSummary {
        Layout.fillWidth: true
        album: root.album
    }
}
