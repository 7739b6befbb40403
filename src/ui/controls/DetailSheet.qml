// A sheet about one thing, open while it is wanted: a heading, what is told of it, and a button that closes it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Sheet {
    id: root

    required property bool wanted
    property int broad: 480
    default property alias told: body.data

    readonly property int step: 60 ///< that an arrow key scrolls by
    readonly property size room: Qt.size((root.parent?.width ?? 0) - 4 * Tokens.space.group,
        (root.parent?.height ?? 0) - 4 * Tokens.space.group)

    /// Closed by the user, in whatever way.
    signal dismissed

    implicitWidth: Math.min(root.broad, root.room.width) + leftPadding + rightPadding
    onWantedChanged: root.wanted ? root.open() : root.close()
    Component.onCompleted: if (root.wanted) root.open()
    onOpened: closeButton.forceActiveFocus(Qt.PopupFocusReason)
    onClosed: if (root.wanted) root.dismissed()

    contentItem: ColumnLayout {
        spacing: Tokens.space.wide
        Keys.onPressed: event => {
            const page = Math.max(root.step, flick.height - root.step);
            const by = {
                [Qt.Key_Up]: -root.step,
                [Qt.Key_Down]: root.step,
                [Qt.Key_PageUp]: -page,
                [Qt.Key_PageDown]: page,
                [Qt.Key_Home]: -Infinity,
                [Qt.Key_End]: Infinity
            }[event.key];
            if (by !== undefined) {
                flick.contentY = Math.max(0, Math.min(flick.contentY + by, flick.contentHeight - flick.height));
                event.accepted = true;
            }
        }

        RowLayout {
            id: head
            spacing: Tokens.space.wide

            TextLine {
                Layout.fillWidth: true
                text: root.title
                font: Tokens.type.title2
                Accessible.role: Accessible.Heading
            }
            Button {
                id: closeButton
                objectName: "closeSheetButton"
                text: L10n.text("Zamknij")
                onClicked: root.close()
            }
        }
        Flickable {
            id: flick
            objectName: "sheetBody"
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, root.room.height - head.implicitHeight - Tokens.space.wide)
            contentHeight: body.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            T.ScrollBar.vertical: ScrollBar {
                parent: root.contentItem.parent
                x: root.width - width
                y: root.topPadding + flick.y
                height: flick.height
            }

            ColumnLayout {
                id: body
                width: parent.width
                spacing: Tokens.space.regular
            }
        }
    }
}
