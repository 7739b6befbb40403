// One section in the sidebar.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.TabButton {
    id: root

    required property string title
    required property string symbol
    required property bool current

    readonly property color ink: root.current ? Tokens.color.textOnAccent : Tokens.color.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 13
    verticalPadding: 11
    checkable: false // the model says which one is open
    text: L10n.text(root.title)
    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    font: root.current ? Tokens.type.headline : Tokens.type.body
    Accessible.name: root.text
    Accessible.selected: root.current
    Keys.onReturnPressed: root.clicked()

    contentItem: Item {
        implicitWidth: label.x + label.implicitWidth
        implicitHeight: label.implicitHeight

        Icon {
            id: picture
            anchors.verticalCenter: parent.verticalCenter
            symbol: root.symbol
            color: root.ink
            side: Tokens.height.symbol + 2
        }
        TextLine {
            id: label
            x: picture.width + Tokens.space.tight + 2
            width: parent.width - x
            text: root.text
            font: root.font
            color: root.ink
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control
        color: root.current ? Tokens.color.accent : "transparent"

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.down ? Tokens.color.pressed : Tokens.color.hover
            opacity: root.down || root.hovered ? 1 : 0
            Behavior on opacity {
                NumberAnimation { duration: Tokens.motion.state }
            }
        }
        FocusRing {
            shown: root.visualFocus
        }
    }
}
