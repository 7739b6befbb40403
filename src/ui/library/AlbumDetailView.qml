// An album in detail: its cover and what can be done about it at the left, its names and tracks at the right.
import QtQuick
import QtQuick.Layouts
import Marlune

PanelSheet {
    id: root

    required property AlbumSheetPresenter album

    readonly property int columnSpacing: 22
    property alias viewer: viewer
    property alias searchSheet: searchSheet

    title: L10n.text("Szczegóły albumu")
    titleFont: Tokens.type.headline
    closeText: L10n.text("Gotowe")
    broad: Math.round(838 * Tokens.type.scale)
    wanted: root.album.wanted
    scrolled: coverColumn
    onDismissed: root.album.dismiss()

    // The cover's colours lie on the sheet as a faint light.
    onGround: Image {
        anchors.fill: parent
        source: root.album.cover === "" ? "" : "image://cover/" + root.album.cover + "/wash/"
            + Tokens.color.washLightness + "/" + Tokens.radius.sheet
        sourceSize.width: Math.round(root.width)
        sourceSize.height: Math.round(root.height)
        asynchronous: true
        opacity: status === Image.Ready ? 0.85 : 0
        Behavior on opacity {
            NumberAnimation { duration: Tokens.motion.appear }
        }
    }

    Connections {
        target: root.album
        function onOpened() {
            coverColumn.toTop();
            discs.toTop();
        }
    }

    tools: [
        ProgressBar {
            Layout.preferredWidth: 60
            visible: root.album.busy
            indeterminate: true
            Accessible.name: root.album.status
        },
        TextLine {
            objectName: "sheetStatus"
            Layout.maximumWidth: Math.round(root.room.width / 2)
            visible: text !== ""
            text: root.album.status
            font: Tokens.type.caption
            color: Tokens.color.textMuted
        }
    ]

    RowLayout {
        id: columns
        objectName: "albumColumns"
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(root.bodyRoom, Math.max(coverColumn.contentHeight, discs.wholeHeight))
        visible: root.album.available
        spacing: root.columnSpacing

        AlbumCoverColumn {
            id: coverColumn
            objectName: "coverColumn"
            Layout.fillHeight: true
            Layout.leftMargin: -around // the cover is in line with the heading
            Layout.rightMargin: -around
            Layout.preferredWidth: Math.round(240 * Math.min(1.5, Tokens.type.scale)) + 2 * around
            album: root.album
            onLargeWanted: viewer.open()
            onSearchWanted: root.album.findCover()
        }
        DiscTrackListView {
            id: discs
            Layout.fillWidth: true
            Layout.fillHeight: true
            tracks: root.album.tracks
            deviceSide: root.album.deviceSide

            AlbumHead {
                anchors.left: parent.left
                anchors.right: parent.right
                album: root.album
            }
        }
    }
    TextBlock {
        objectName: "albumGone"
        Layout.fillWidth: true
        visible: !root.album.available
        text: L10n.text("Album nie jest już dostępny w tej bibliotece.")
        color: Tokens.color.text
    }

    CoverViewer {
        id: viewer
        cover: root.album.cover
        ownSide: root.album.coverSide
        caption: root.album.coverFacts
        name: root.album.albumTitle
        wanted: root.opened && root.album.available
    }
    CoverSearchView {
        id: searchSheet
        search: root.album.coverSearch
        wanted: root.opened && root.album.coverSearch.wanted
    }
}
