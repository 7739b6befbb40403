// A handbook of the firmware, and all iPods side by side.
import QtQuick
import Marlune

Item {
    id: root

    property string page: "Poradnik"

    readonly property int around: 24
    readonly property Flickable view: handbook.visible ? handbook.view : gallery.view

    /// Moves what is shown, as far as it goes.
    function scroll(by: real) {
        const least = root.view.originY - root.view.topMargin;
        const most = root.view.originY + root.view.contentHeight + root.view.bottomMargin - root.view.height;
        root.view.contentY = Math.max(least, Math.min(root.view.contentY + by, most));
    }

    clip: true
    Keys.onPressed: event => {
        const page = root.view.height - 2 * Tokens.space.section - handbook.covered;
        const step = {
            [Qt.Key_Up]: -60,
            [Qt.Key_Down]: 60,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page,
            [Qt.Key_Space]: event.modifiers & Qt.ShiftModifier ? -page : page,
            [Qt.Key_Home]: -Infinity,
            [Qt.Key_End]: Infinity
        }[event.key];
        if (step !== undefined) {
            root.scroll(step);
            event.accepted = true;
        }
    }

    GuideHead {
        id: head
        x: root.around
        y: root.view.originY - root.view.contentY - root.view.topMargin + root.around
        z: 1 // what is scrolled below it takes the whole page
        width: root.width - 2 * root.around
        page: root.page
        scrolledBy: root.view
        onPicked: page => root.page = page
    }
    HandbookView {
        id: handbook
        anchors.fill: parent
        visible: root.page === "Poradnik"
        around: root.around
        headRoom: root.around + head.height + Tokens.space.tight
    }
    ModelGallery {
        id: gallery
        anchors.fill: parent
        visible: root.page === "Modele"
        around: root.around
        headRoom: root.around + head.height + Tokens.space.wide
    }
}
