// Shows the window's hint by the item that it is about. One for each window.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ToolTip {
    id: root

    readonly property int widest: 320
    /// Of the window that it is shown in, where that has some of its own.
    readonly property ColorRoles roles: root.parent?.Window.window?.roles ?? Tokens.color

    parent: Hints.target
    visible: Hints.shown
    text: Hints.text
    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: parent ? parent.height + Tokens.space.tight : 0
    implicitWidth: Math.min(root.widest, label.implicitWidth + 2 * padding)
    implicitHeight: label.implicitHeight + 2 * padding
    margins: Tokens.space.tight
    padding: Tokens.space.tight
    delay: Tokens.motion.hint

    contentItem: Text {
        id: label
        text: root.text
        textFormat: Text.PlainText
        font: Tokens.type.caption
        color: root.roles.text
        wrapMode: Text.Wrap
        maximumLineCount: 12
        elide: Text.ElideRight
    }
    background: Rectangle {
        color: root.roles.raised
        border.color: root.roles.line
        radius: Tokens.radius.control
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Tokens.motion.state }
    }
}
