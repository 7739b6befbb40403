// A box to tick, with its text.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.CheckBox {
    id: root

    property string toolTip

    readonly property int box: Math.round(Tokens.height.symbol)

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Tokens.height.regular
    leftPadding: root.box + Tokens.space.tight
    rightPadding: 0
    font: Tokens.type.subheadline
    focusPolicy: Qt.StrongFocus
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: root.text
    Accessible.description: root.toolTip
    Keys.onReturnPressed: {
        root.toggle();
        root.toggled();
    }
    onHoveredChanged: root.hovered ? Hints.show(root, root.toolTip) : Hints.hide(root)

    indicator: Rectangle {
        y: (root.height - height) / 2
        width: root.box
        height: root.box
        radius: 4
        color: root.checked ? Tokens.color.accent : Tokens.color.card
        border.width: root.checked ? 0 : 1
        border.color: Tokens.color.textMuted

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.down ? Tokens.color.pressed : Tokens.color.hover
            visible: root.enabled && (root.down || root.hovered)
        }
        Icon {
            anchors.centerIn: parent
            visible: root.checked
            symbol: "checkmark"
            color: Tokens.color.textOnAccent
            side: root.box - 3
        }
        FocusRing {
            shown: root.visualFocus
            around: parent.radius
        }
    }
    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: Tokens.color.text
        verticalAlignment: Text.AlignVCenter
    }
}
