// One track in the table. Shows what it is given, reports clicks and keys, decides nothing.
//
// The row is one stop for the Tab key while it is the current one; its buttons are none.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property int index
    required property string number
    required property string title
    required property string artist
    required property string time
    required property string format
    required property string parameters
    required property bool highResolution
    required property bool chosen
    required property bool playing
    required property bool marked
    required property TrackColumns columns
    required property bool deviceSide
    required property bool current

    signal held(int modifiers) ///< the mouse button went down on it
    signal picked(int modifiers)
    signal listenWanted
    signal playWanted
    signal playNeared
    signal queueWanted
    signal menuWanted
    signal dragged

    implicitHeight: root.columns.rowHeight
    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.name: root.number + root.title + ", " + root.artist
    Accessible.description: L10n.enumeration([root.time, root.format, root.parameters,
        root.chosen ? L10n.text("Zaznaczono") : ""])
    Accessible.selectable: true
    Accessible.selected: root.marked
    Accessible.onPressAction: root.queueWanted()

    contentItem: Item {
        TrackMouse {
            anchors.fill: parent
            onHeld: modifiers => root.held(modifiers)
            onPicked: modifiers => root.picked(modifiers)
            onDoubled: root.listenWanted()
            onMenuWanted: root.menuWanted()
            onDragged: root.dragged()
        }
        Button {
            objectName: "queueButton"
            x: (root.columns.chosen - width) / 2
            anchors.verticalCenter: parent.verticalCenter
            kind: Button.Borderless
            measure: Button.Small
            focusPolicy: Qt.NoFocus // the row is the keyboard's way here
            symbol: root.chosen ? "checkmark.circle.fill" : "plus.circle"
            tint: root.chosen || hovered ? Tokens.color.accent : Tokens.color.textMuted
            toolTip: L10n.text(root.deviceSide ? "Dodaj / usuń z playlisty" : "Dodaj / usuń z kolejki")
            onClicked: root.queueWanted()
        }
        TrackTitle {
            x: root.columns.titleX
            width: root.columns.title
            height: parent.height
            number: root.number
            title: root.title
            artist: root.artist
            playing: root.playing
            onPlayNeared: root.playNeared()
            onPlayWanted: root.playWanted()
        }
        Figures {
            x: root.columns.timeX + root.columns.time - width // an hour's digits take the gap too
            anchors.verticalCenter: parent.verticalCenter
            text: root.time
            font: Tokens.type.caption
            color: Tokens.color.textMuted
        }
        Cell {
            x: root.columns.formatX
            width: root.columns.format
            text: root.format
        }
        Cell {
            x: root.columns.parametersX
            width: root.columns.parameters
            text: root.parameters
            color: root.highResolution ? Tokens.color.warning : Tokens.color.textMuted
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control - 1
        color: root.index % 2 === 0 ? "transparent" : Tokens.color.card

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.marked ? Tokens.color.marked : Tokens.color.hover
            visible: root.marked || root.hovered
        }
        FocusRing {
            anchors.margins: 0 // within the row: others are close
            around: parent.radius - thickness
            shown: root.visualFocus
        }
    }

    component Cell: TextLine {
        anchors.verticalCenter: parent.verticalCenter
        font: Tokens.type.caption2
        color: Tokens.color.textMuted
        Accessible.ignored: true
    }
}
