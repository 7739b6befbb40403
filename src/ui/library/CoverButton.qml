// A cover that shows itself large when it is pressed.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.AbstractButton {
    id: root

    required property string cover

    implicitWidth: 240
    implicitHeight: 240
    focusPolicy: Qt.StrongFocus
    Accessible.name: L10n.text("Pokaż okładkę w pełnym rozmiarze")
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    HoverHandler {
        cursorShape: root.enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
    }

    contentItem: CoverView {
        cover: root.cover
        decodeSide: Math.round(root.width)
    }
    FocusRing {
        shown: root.visualFocus
        around: Tokens.radius.cover
    }
}
