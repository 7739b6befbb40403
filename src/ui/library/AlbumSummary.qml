// An album's cover, names and facts, for the head of its sheets; or that the library has it no more.
import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property AlbumSheetPresenter album

    readonly property int coverSide: 150

    spacing: 22

    CoverView {
        Layout.alignment: Qt.AlignTop
        Layout.preferredWidth: root.coverSide
        Layout.preferredHeight: root.coverSide
        visible: root.album.available
        cover: root.album.cover
        decodeSide: root.coverSide
    }
    ColumnLayout {
        Layout.alignment: Qt.AlignTop
        visible: root.album.available
        spacing: Tokens.space.hair

        Line {
            objectName: "sheetTitle"
            text: root.album.albumTitle
            font: Tokens.type.of(24, Font.Bold)
            color: Tokens.color.text
            maximumLineCount: 3
        }
        Line {
            text: root.album.artist
            font: Tokens.type.title3
            color: Tokens.color.text
            maximumLineCount: 2
        }
        Line {
            Layout.topMargin: Tokens.space.hair
            text: root.album.facts
            font: Tokens.type.caption
        }
        Line {
            text: root.album.format
            font: Tokens.type.caption
        }
    }
    TextBlock {
        objectName: "albumGone"
        Layout.fillWidth: true
        visible: !root.album.available
        text: L10n.text("Album nie jest już dostępny w tej bibliotece.")
        color: Tokens.color.text
    }

    component Line: TextBlock {
        Layout.fillWidth: true
        elide: Text.ElideRight
    }
}
