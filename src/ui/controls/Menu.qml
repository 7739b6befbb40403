// A menu: below a menu bar or at the pointer.
import QtQuick
import QtQuick.Templates as T
import Marlune

T.Menu {
    id: root

    implicitWidth: contentWidth + leftPadding + rightPadding
    implicitHeight: contentHeight + topPadding + bottomPadding
    margins: Tokens.space.tight
    padding: Tokens.space.hair

    delegate: MenuItem {}
    contentItem: ListView {
        implicitWidth: {
            let widest = 0;
            for (let i = 0; i < root.count; ++i) {
                widest = Math.max(widest, root.itemAt(i)?.implicitWidth ?? 0);
            }
            return widest;
        }
        implicitHeight: contentHeight
        model: root.contentModel
        interactive: false
        currentIndex: root.currentIndex
    }
    background: MenuGround {}
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Tokens.motion.state }
    }
}
