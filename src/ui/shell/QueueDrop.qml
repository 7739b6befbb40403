// Takes what is dropped to the queue, and shows that it would.
import QtQuick
import Marlune

DropArea {
    id: root

    required property ShellPresenter shell

    onEntered: event => event.accepted = root.shell.takesDrop(event.formats)
    onDropped: event => {
        event.accept(Qt.CopyAction);
        const own = event.formats.includes(root.shell.trackFormat); // then nobody need name all the files
        root.shell.queueDropped(event.getDataAsArrayBuffer(root.shell.trackFormat), own ? [] : event.urls);
    }

    Rectangle {
        objectName: "queueHighlight"
        anchors.fill: parent
        anchors.margins: Tokens.space.hair
        radius: Tokens.radius.card
        color: Tokens.color.marked
        border.width: 2
        border.color: Tokens.color.accent
        opacity: root.containsDrag ? 1 : 0
        visible: opacity > 0
        Behavior on opacity {
            NumberAnimation { duration: Tokens.motion.state }
        }
    }
}
