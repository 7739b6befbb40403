// An album's cover, large, and below it what can be done about it. Scrolls where the sheet is too low for all of it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Flickable {
    id: root

    required property AlbumSheetPresenter album

    readonly property int around: 8 ///< room for the shadow and the ring

    signal largeWanted
    signal searchWanted

    function toTop() {
        root.contentY = 0;
    }

    implicitWidth: 250
    contentHeight: column.implicitHeight + 2 * root.around
    boundsBehavior: Flickable.StopAtBounds
    leftMargin: root.around
    clip: contentHeight > height
    T.ScrollBar.vertical: ScrollBar {
        parent: root
        x: root.width
        height: root.height
    }

    ColumnLayout {
        id: column
        y: root.around
        width: root.width - 2 * root.around
        spacing: Tokens.space.tight

        CoverButton {
            objectName: "coverButton"
            Layout.fillWidth: true
            Layout.preferredHeight: width
            Layout.bottomMargin: Tokens.space.regular
            cover: root.album.cover
            enabled: root.album.coverSide > 0
            onClicked: root.largeWanted()
        }
        RowLayout {
            Layout.bottomMargin: Tokens.space.hair
            spacing: Tokens.space.hair + 2

            Icon {
                Layout.alignment: Qt.AlignTop
                symbol: "info.circle"
                color: Tokens.color.textMuted
            }
            TextBlock {
                Layout.fillWidth: true
                text: L10n.text("Rockbox może najpierw wyświetlić okładkę osadzoną w utworze. Ta operacja zapisuje pliki obrazów, nie zmienia tagów audio.")
                font: Tokens.type.caption
            }
        }
        Button {
            objectName: "chooseCoverButton"
            Layout.fillWidth: true
            text: L10n.text("Dodaj / zmień okładkę…")
            enabled: !root.album.busy
            onClicked: root.album.chooseCover(false)
        }
        Button {
            objectName: "findCoverButton"
            Layout.fillWidth: true
            text: L10n.text("Znajdź w sieci…")
            onClicked: root.searchWanted()
        }
        Button {
            objectName: "prepareCoverButton"
            Layout.fillWidth: true
            text: L10n.text("Przygotuj obecną dla Rockbox")
            enabled: !root.album.busy && root.album.coverSide > 0
            onClicked: root.album.chooseCover(true)
        }
        TextBlock {
            Layout.fillWidth: true
            Layout.topMargin: Tokens.space.hair
            text: L10n.text("JPEG 500 × 500 bez kodowania progresywnego. Na iPodzie wcześniejsze obrazy trafiają do kopii na Macu.")
            font: Tokens.type.caption
        }
        Button {
            objectName: "coverSourceButton"
            Layout.maximumWidth: parent.width
            Layout.leftMargin: -leftPadding // its text is in line with those above
            visible: root.album.hasSource
            kind: Button.Borderless
            measure: Button.Small
            font: Tokens.type.caption2
            text: L10n.text("Źródło pobranej okładki")
            onClicked: root.album.openSource()
        }
    }
}
