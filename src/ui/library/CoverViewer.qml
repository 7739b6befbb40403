// A cover as large as it is, up to the window, over a dark ground. A click or Escape closes it.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Popup {
    id: root

    required property string cover ///< name in the cover store
    required property int ownSide ///< pixels of the picture's longer edge
    required property string caption
    required property string name
    required property bool wanted ///< there is something that it belongs to

    readonly property real shape: picture.implicitWidth / Math.max(1, picture.implicitHeight)
    readonly property size whole: root.shape >= 1 ? Qt.size(root.ownSide, root.ownSide / root.shape)
        : Qt.size(root.ownSide * root.shape, root.ownSide)
    readonly property real shrunk: Math.min(1, area.width / Math.max(1, root.whole.width),
        area.height / Math.max(1, root.whole.height))

    parent: T.Overlay.overlay
    width: parent?.width ?? 0
    height: parent?.height ?? 0
    modal: true
    dim: false
    focus: true
    padding: Tokens.space.group
    closePolicy: T.Popup.CloseOnEscape
    onWantedChanged: if (!root.wanted) root.close()
    onOwnSideChanged: if (root.ownSide === 0) root.close()

    background: Rectangle {
        color: Tokens.color.darkroom
    }
    contentItem: Item {
        focus: true
        Accessible.role: Accessible.Graphic
        Accessible.name: root.name + ", " + root.caption
        Keys.onReturnPressed: root.close()
        Keys.onEnterPressed: root.close()
        Keys.onSpacePressed: root.close()

        TapHandler {
            onTapped: root.close()
        }
        Item {
            id: area
            width: parent.width
            height: parent.height - words.height - Tokens.space.regular

            Image {
                id: picture
                objectName: "wholeCover"
                anchors.centerIn: parent
                width: Math.round(root.whole.width * root.shrunk)
                height: Math.round(root.whole.height * root.shrunk)
                asynchronous: true
                source: root.visible && root.cover !== "" ? "image://cover/" + root.cover + "/whole" : ""
                sourceSize.width: picture.longest
                sourceSize.height: picture.longest

                readonly property int longest: Math.max(1,
                    Math.round(Math.min(root.ownSide, Math.max(area.width, area.height))))
            }
        }
        TextLine {
            id: words
            objectName: "coverCaption"
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            text: root.caption
            font: Tokens.type.subheadline
            color: Tokens.color.textOnDarkroom
        }
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Tokens.motion.appear; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Tokens.motion.state; easing.type: Easing.OutCubic }
    }
}
