// One album in the grid. Shows what it is given, reports clicks, decides nothing.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property int index
    required property string albumTitle
    required property string artist
    required property string countAndSize
    required property string format
    required property bool highResolution
    required property string discs
    required property bool chosen ///< queued, or selected for a playlist
    required property bool marked ///< selected in the grid
    required property bool playing
    required property string cover
    required property bool deviceSide
    required property bool current ///< the keyboard's stop
    property int coverDecodeSide: Math.round(root.width)

    readonly property int around: Tokens.space.tight ///< of what shows that it is selected

    signal opened
    signal picked(int modifiers) ///< with Control or Shift
    signal toggled
    signal played
    signal playNeared
    signal menuWanted
    signal dragged

    implicitHeight: root.width + Tokens.space.regular + words.implicitHeight
    Accessible.name: root.albumTitle + ", " + root.artist
    Accessible.description: L10n.enumeration([root.format, root.countAndSize, root.discs,
        root.chosen ? L10n.text("Zaznaczono") : ""])
    Accessible.selectable: true
    Accessible.selected: root.marked
    Accessible.onPressAction: root.opened()
    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus

    HoverHandler {
        id: hover
        onHoveredChanged: hovered ? Hints.show(root, L10n.text("Otwórz album i listę utworów")) : Hints.hide(root)
    }
    background: Rectangle {
        x: -root.around
        y: -root.around
        width: root.width + 2 * root.around
        height: root.height + root.around
        radius: Tokens.radius.cover + root.around
        color: Tokens.color.marked
        visible: root.marked
    }
    TrackMouse {
        anchors.fill: parent
        onHeld: root.forceActiveFocus(Qt.MouseFocusReason)
        onPicked: modifiers => modifiers & (Qt.ControlModifier | Qt.ShiftModifier) ? root.picked(modifiers) : root.opened()
        onMenuWanted: root.menuWanted()
        onDragged: root.dragged()
    }
    CoverView {
        id: picture
        width: root.width
        height: root.width
        y: hover.hovered ? -2 : 0
        cover: root.cover
        decodeSide: root.coverDecodeSide
        marked: root.chosen

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
            symbol: root.chosen ? "checkmark.circle.fill" : "plus.circle"
            text: L10n.text(root.chosen ? "Zaznaczono" : root.deviceSide ? "Do playlisty" : "Do kolejki")
            onClicked: root.toggled()
        }
    }
}
