// A file in a list, with what is known of it and what can be done with it. Shows what it is given, decides nothing.
//
// The row is one stop for the Tab key while it is the current one, and so is its button.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property string name
    required property string detail
    required property string symbol
    required property string actionText
    required property bool current

    signal chosen

    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: Tokens.space.regular
    verticalPadding: Tokens.space.tight
    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.name: root.name
    Accessible.description: root.detail
    Accessible.onPressAction: root.chosen()
    Keys.onReturnPressed: root.chosen()
    Keys.onEnterPressed: root.chosen()
    Keys.onSpacePressed: root.chosen()

    contentItem: RowLayout {
        spacing: Tokens.space.regular

        Icon {
            symbol: root.symbol
            color: Tokens.color.textMuted
            side: Tokens.height.symbol + 2
        }
        ColumnLayout {
            spacing: 1

            TextLine {
                objectName: "fileName"
                Layout.fillWidth: true
                text: root.name
                elide: Text.ElideMiddle
                Accessible.ignored: true
            }
            TextBlock {
                objectName: "fileDetail"
                Layout.fillWidth: true
                text: root.detail
                font: Tokens.type.caption
                maximumLineCount: 3
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Button {
            objectName: "fileButton"
            measure: Button.Small
            focusPolicy: root.current || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
            text: root.actionText
            Accessible.name: root.actionText + ": " + root.name
            onClicked: root.chosen()
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control
        color: root.hovered ? Tokens.color.hover : "transparent"

        Divider {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: -1
            x: root.leftPadding
            width: parent.width - 2 * x
        }
        FocusRing {
            shown: root.visualFocus
        }
    }
}
