// A field to search in. Escape, or the cross at its end, empties it; Escape in an empty one leaves it.
import QtQuick
import Marlune

TextField {
    id: root

    signal leaveWanted

    implicitHeight: Math.max(Tokens.height.regular, contentHeight + 18)
    leftPadding: 9 + Tokens.height.symbol + Tokens.space.tight
    rightPadding: clear.width + Tokens.space.hair
    Keys.onEscapePressed: event => {
        event.accepted = root.text !== "";
        root.text === "" ? root.leaveWanted() : root.clear();
    }

    Icon {
        x: 9
        anchors.verticalCenter: parent.verticalCenter
        symbol: "magnifyingglass"
        color: Tokens.color.textMuted
    }
    Button {
        id: clear
        anchors.right: parent.right
        anchors.rightMargin: Tokens.space.hair
        anchors.verticalCenter: parent.verticalCenter
        visible: root.length > 0
        kind: Button.Borderless
        measure: Button.Small
        focusPolicy: Qt.NoFocus
        symbol: "xmark.circle.fill"
        tint: Tokens.color.textMuted
        toolTip: L10n.text("Wyczyść")
        onClicked: {
            root.clear();
            root.forceActiveFocus();
        }
    }
}
