// A sheet about one thing, open while it is wanted: a heading, what is told of it, and a button that closes it.
import QtQuick
import QtQuick.Layouts
import Marlune

Sheet {
    id: root

    required property bool wanted
    property int broad: 480
    default property alias told: body.data

    /// Closed by the user, in whatever way.
    signal dismissed

    onWantedChanged: root.wanted ? root.open() : root.close()
    Component.onCompleted: if (root.wanted) root.open()
    onOpened: closeButton.forceActiveFocus(Qt.PopupFocusReason)
    onClosed: if (root.wanted) root.dismissed()

    contentItem: ColumnLayout {
        spacing: Tokens.space.wide

        RowLayout {
            Layout.preferredWidth: Math.min(root.broad, (root.parent?.width ?? root.broad) - 4 * Tokens.space.group)
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
        ColumnLayout {
            id: body
            Layout.fillWidth: true
            spacing: Tokens.space.regular
        }
    }
}
