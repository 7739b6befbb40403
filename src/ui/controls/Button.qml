// A button in one of three kinds and sizes: a text, a symbol or both.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Button {
    id: root

    enum Kind { Bordered, Prominent, Borderless }
    enum Measure { Small, Regular, Large }

    property int kind: Button.Bordered
    property int measure: Button.Regular
    property string symbol
    property string toolTip
    property ColorRoles roles: Tokens.color ///< of the ground that it lies on
    property color tint: root.filled ? root.roles.textOnAccent
        : root.kind === Button.Borderless ? root.roles.accent : root.roles.text

    /// Disabled, it would be pale on pale: it is then drawn as a bordered one.
    readonly property bool filled: root.kind === Button.Prominent && root.enabled

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: root.measure === Button.Large ? Tokens.height.large
        : root.measure === Button.Small ? Tokens.height.small : Tokens.height.regular
    horizontalPadding: root.text === "" ? (implicitHeight - Tokens.height.symbol) / 2
        : root.kind === Button.Borderless ? Tokens.space.tight
        : root.measure === Button.Large ? Tokens.space.wide : Tokens.space.regular
    focusPolicy: Qt.StrongFocus
    opacity: root.enabled ? 1 : root.roles.disabled
    font: root.measure === Button.Small ? Tokens.type.caption : Tokens.type.subheadlineStrong
    Accessible.name: root.text !== "" ? root.text : root.toolTip
    Accessible.description: root.text !== "" ? root.toolTip : ""
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
    onHoveredChanged: root.hovered ? Hints.show(root, root.toolTip || (label.truncated ? root.text : ""))
        : Hints.hide(root)

    contentItem: Item {
        // Asks what is in it rather than what is visible: while the page is hidden, nothing is.
        implicitWidth: row.pictureRoom + (root.text !== "" ? label.implicitWidth : 0)
        implicitHeight: row.implicitHeight

        Row {
            id: row

            readonly property real pictureRoom: root.symbol === "" ? 0
                : picture.width + (root.text === "" ? 0 : spacing)

            anchors.centerIn: parent
            spacing: Tokens.space.hair + 2

            Icon {
                id: picture
                visible: root.symbol !== ""
                symbol: root.symbol
                color: root.tint
                side: root.measure === Button.Small ? Tokens.height.symbol - 2 : Tokens.height.symbol
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                id: label
                visible: root.text !== ""
                width: Math.min(implicitWidth, root.availableWidth - row.pictureRoom)
                text: root.text
                textFormat: Text.PlainText
                font: root.font
                color: root.tint
                elide: Text.ElideRight
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control
        color: root.filled ? root.roles.accent : root.kind === Button.Borderless ? "transparent" : root.roles.card
        border.width: root.filled || root.kind === Button.Borderless ? 0 : 1
        border.color: root.roles.line

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.down ? root.roles.pressed : root.roles.hover
            opacity: root.enabled && (root.down || root.hovered) ? 1 : 0
            Behavior on opacity {
                NumberAnimation { duration: Tokens.motion.state }
            }
        }
        FocusRing {
            shown: root.visualFocus
            border.color: root.roles.focusRing
        }
    }
}
