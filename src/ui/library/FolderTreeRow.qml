// One folder or file in the outline. Shows what it is given, reports clicks and keys, decides nothing.
//
// The row is one stop for the Tab key while it is the current one; its buttons are none.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property int index
    required property string name
    required property int depth
    required property bool isFolder
    required property bool open
    required property int trackCount
    required property int chosen
    required property bool playing ///< the file is heard, or one in the folder
    required property bool marked
    required property string stateText
    required property bool deviceSide
    required property bool current

    signal held(int modifiers) ///< the mouse button went down on it
    signal picked(int modifiers)
    signal openToggled
    signal listenWanted
    signal playWanted
    signal playNeared
    signal queueWanted
    signal menuWanted
    signal dragged

    readonly property bool allChosen: root.chosen === FolderTreeModel.AllChosen
    readonly property int step: Tokens.height.symbol + 2
    readonly property int smallStep: 6
    /// Levels further down are set in less, and all within half of the row.
    readonly property int fullSteps: Math.max(3, Math.floor(root.width * 0.3 / root.step))
    readonly property real indent: Math.min(root.width / 2,
        Math.min(root.depth, root.fullSteps) * root.step + Math.max(0, root.depth - root.fullSteps) * root.smallStep)

    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.name: root.name + ", " + root.stateText
    Accessible.description: root.allChosen ? L10n.text("Zaznaczono") : ""
    Accessible.selectable: true
    Accessible.selected: root.marked
    Accessible.onPressAction: root.isFolder ? root.openToggled() : root.queueWanted()

    contentItem: Item {
        TrackMouse {
            anchors.fill: parent
            onHeld: modifiers => root.held(modifiers)
            onPicked: modifiers => root.picked(modifiers)
            onDoubled: root.listenWanted()
            onMenuWanted: root.menuWanted()
            onDragged: root.dragged()
        }
        FolderTreeArrow {
            id: arrow
            objectName: "openArrow"
            x: root.indent
            height: parent.height
            visible: root.isFolder
            open: root.open
            onTapped: root.openToggled()
        }
        Icon {
            id: picture
            x: root.indent + arrow.width
            anchors.verticalCenter: parent.verticalCenter
            symbol: root.isFolder ? "folder" : "music.note"
            color: root.playing || root.isFolder ? Tokens.color.accent : Tokens.color.textMuted
        }
        TextLine {
            objectName: "nodeName"
            anchors.left: picture.right
            anchors.leftMargin: Tokens.space.tight
            anchors.right: buttons.left
            anchors.rightMargin: Tokens.space.tight
            anchors.verticalCenter: parent.verticalCenter
            text: root.name
            font: Tokens.type.subheadline
            color: root.playing && !root.isFolder ? Tokens.color.accent : Tokens.color.text
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }
        FolderTreeButtons {
            id: buttons
            anchors.right: parent.right
            anchors.rightMargin: Tokens.space.tight
            height: parent.height
            isFolder: root.isFolder
            playing: root.playing
            trackCount: root.trackCount
            chosen: root.chosen
            deviceSide: root.deviceSide
            onPlayNeared: root.playNeared()
            onPlayWanted: root.playWanted()
            onQueueWanted: root.queueWanted()
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control - 1
        color: root.marked ? Tokens.color.marked : root.hovered ? Tokens.color.hover : "transparent"

        FocusRing {
            anchors.margins: 0 // within the row: others are close
            around: parent.radius - thickness
            shown: root.visualFocus
        }
    }
}
