// A sheet that is open while it is wanted: a heading, what is shown below it, and a button that closes it.
import QtQuick
import QtQuick.Layouts
import Marlune

Sheet {
    id: root

    required property bool wanted
    property int broad: 480
    property string closeText: L10n.text("Zamknij")
    property font titleFont: Tokens.type.title2
    property Item firstFocus: closeButton ///< what has the focus when it opens
    default property alias shown: body.data
    property alias tools: slot.data ///< between the heading and the button
    property Flickable scrolled: null ///< what the arrow keys, Page Up and Down, Home and End move

    readonly property int step: 60 ///< that an arrow key scrolls by
    readonly property size room: Qt.size((root.parent?.width ?? 0) - 4 * Tokens.space.group,
        (root.parent?.height ?? 0) - 4 * Tokens.space.group)
    readonly property real bodyRoom: root.room.height - head.implicitHeight - root.spacing ///< for what is shown

    /// Closed by the user, in whatever way.
    signal dismissed

    spacing: Tokens.space.wide
    implicitWidth: Math.min(root.broad, root.room.width) + leftPadding + rightPadding
    onWantedChanged: root.wanted ? root.open() : root.close()
    Component.onCompleted: if (root.wanted) root.open()
    onOpened: root.firstFocus.forceActiveFocus(Qt.PopupFocusReason)
    onClosed: if (root.wanted) root.dismissed()

    contentItem: ColumnLayout {
        spacing: root.spacing
        Keys.enabled: root.scrolled !== null
        Keys.onPressed: event => {
            const view = root.scrolled;
            const page = Math.max(root.step, view.height - root.step);
            const by = {
                [Qt.Key_Up]: -root.step,
                [Qt.Key_Down]: root.step,
                [Qt.Key_PageUp]: -page,
                [Qt.Key_PageDown]: page,
                [Qt.Key_Home]: -Infinity,
                [Qt.Key_End]: Infinity
            }[event.key];
            if (by !== undefined) {
                view.contentY = Math.max(0, Math.min(view.contentY + by, view.contentHeight - view.height));
                event.accepted = true;
            }
        }

        RowLayout {
            id: head
            spacing: Tokens.space.wide

            TextLine {
                text: root.title
                font: root.titleFont
                Layout.fillWidth: true
                Layout.minimumWidth: Math.min(implicitWidth, root.room.width / 2)
                Accessible.role: Accessible.Heading
            }
            RowLayout {
                id: slot
                spacing: Tokens.space.tight
            }
            Button {
                id: closeButton
                objectName: "closeSheetButton"
                text: root.closeText
                onClicked: root.close()
            }
        }
        ColumnLayout {
            id: body
            spacing: Tokens.space.regular
        }
    }
}
