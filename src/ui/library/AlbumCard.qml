// One album in the grid. Shows what it is given, reports clicks, decides nothing.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property string albumTitle
    required property string artist
    required property string countAndSize
    required property string format
    required property bool highResolution
    required property string discs
    required property bool selected
    required property bool playing
    required property string cover
    required property bool deviceSide
    property int coverDecodeSide: Math.round(root.width)

    signal opened
    signal toggled
    signal played
    signal playNeared
    signal menuWanted

    implicitHeight: root.width + Tokens.space.regular + words.implicitHeight
    Accessible.name: root.albumTitle + ", " + root.artist
    Accessible.description: root.format + ", " + root.countAndSize + (root.discs === "" ? "" : ", " + root.discs)
    Accessible.selected: root.selected
    Accessible.onPressAction: root.opened()
    Keys.onSpacePressed: root.toggled()
    Keys.onReturnPressed: root.opened()
    Keys.onEnterPressed: root.opened()
    onClicked: root.opened()

    HoverHandler {
        id: hover
        onHoveredChanged: hovered ? Hints.show(picture, L10n.text("Otwórz album i listę utworów")) : Hints.hide(picture)
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: root.menuWanted()
    }

    CoverView {
        id: picture
        width: root.width
        height: root.width
        y: hover.hovered ? -2 : 0
        cover: root.cover
        decodeSide: root.coverDecodeSide
        marked: root.selected

        Behavior on y {
            NumberAnimation { duration: Tokens.motion.state; easing.type: Easing.OutCubic }
        }
        FocusRing {
            shown: root.visualFocus
            around: Tokens.radius.cover
        }
        CoverPlayButton {
            objectName: "playButton"
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.margins: Tokens.space.tight
            shown: hover.hovered || root.visualFocus || root.playing
            playing: root.playing
            onNeared: root.playNeared()
            onClicked: root.played()
        }
    }
    Column {
        id: words
        y: root.width + Tokens.space.regular
        width: root.width
        spacing: 2

        AlbumWords {
            width: parent.width
            albumTitle: root.albumTitle
            artist: root.artist
            format: root.format
            highResolution: root.highResolution
            countAndSize: root.countAndSize
            discs: root.discs
        }
        Button {
            objectName: "queueButton"
            x: -leftPadding // its symbol is in line with the texts
            kind: Button.Borderless
            measure: Button.Small
            focusPolicy: Qt.NoFocus // the grid is the keyboard's way here
            symbol: root.selected ? "checkmark.circle.fill" : "plus.circle"
            text: L10n.text(root.selected ? "Zaznaczono" : root.deviceSide ? "Do playlisty" : "Do kolejki")
            onClicked: root.toggled()
        }
    }
}
