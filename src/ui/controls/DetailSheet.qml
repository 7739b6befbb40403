// A sheet about one thing, open while it is wanted: a heading, what is told of it, and a button that closes it.
import QtQuick
import QtQuick.Layouts
import Marlune

Sheet {
    id: root

    required property bool wanted
    property int broad: 480
    default property alias told: body.data

    readonly property size room: Qt.size((root.parent?.width ?? 0) - 4 * Tokens.space.group, (root.parent?.height ?? 0) - 4 * Tokens.space.group)

    /// Closed by the user, in whatever way.
    signal dismissed

    implicitWidth: Math.min(root.broad, root.room.width) + leftPadding + rightPadding
    onWantedChanged: root.wanted ? root.open() : root.close()
    Component.onCompleted: if (root.wanted) root.open()
    onOpened: closeButton.forceActiveFocus(Qt.PopupFocusReason)
    onClosed: if (root.wanted) root.dismissed()

    contentItem: ColumnLayout {
        spacing: Tokens.space.wide

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
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, root.room.height - head.implicitHeight - Tokens.space.wide)
            contentHeight: body.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height

            ColumnLayout {
                id: body
                width: parent.width
                spacing: Tokens.space.regular
            }
        }
    }
}
