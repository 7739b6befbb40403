// One theme in the gallery: what its playing screen looks like, its name, and where the picture is from. Shows what it is
// given, reports clicks, decides nothing.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property string name
    required property url picture
    required property string source
    required property bool active

    signal opened
    signal menuWanted

    implicitHeight: root.width * 3 / 4 + words.implicitHeight + Tokens.space.tight
    Accessible.name: root.name
    Accessible.description: L10n.enumeration([root.active ? L10n.text("Ustawiony na iPodzie") : "", root.source])
    Accessible.onPressAction: root.opened()
    onClicked: root.opened()

    HoverHandler {
        id: hover
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: root.menuWanted()
    }

    ThemeImage {
        id: shot
        width: root.width
        height: Math.round(root.width * 3 / 4)
        url: root.picture
        silent: true

        Rectangle {
            anchors.fill: parent
            radius: shot.rounding
            color: hover.hovered ? Tokens.color.hover : "transparent"
            border.width: root.active ? 2 : 1
            border.color: root.active ? Tokens.color.accent : Tokens.color.line
        }
        FocusRing {
            shown: root.visualFocus
            around: shot.rounding
        }
        Badge {
            visible: root.active
            text: L10n.text("Ustawiony na iPodzie")
            x: Tokens.space.tight
            y: shot.height - height - Tokens.space.tight
            width: Math.min(implicitWidth, shot.width - 2 * Tokens.space.tight)
        }
    }
    Column {
        id: words
        y: shot.height + Tokens.space.tight
        width: root.width
        spacing: Tokens.space.tight

        TextLine {
            width: parent.width
            text: root.name
            font: Tokens.type.headline
            Accessible.ignored: true
        }
        TextLine {
            width: parent.width
            text: root.source
            font: Tokens.type.caption2
            wrapMode: Text.Wrap
            maximumLineCount: 2
            color: Tokens.color.textMuted
            Accessible.ignored: true
        }
        Button {
            objectName: "themeButton"
            x: -leftPadding // its text is in line with those above
            kind: Button.Borderless
            measure: Button.Small
            focusPolicy: Qt.NoFocus // the tile is the keyboard's way here
            text: L10n.text("Szczegóły i podgląd")
            onClicked: root.opened()
        }
    }
}
