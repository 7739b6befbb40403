// The carousel without albums: what is missing, and the step that brings it.
import QtQuick
import QtQuick.Layouts
import Marlune

Item {
    id: root

    required property CoverFlowPresenter flow
    required property ColorRoles roles

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width, Math.round(420 * Tokens.type.scale))
        spacing: Tokens.space.wide

        Icon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "rectangle.stack"
            color: root.roles.textMuted
            side: 47
        }
        TextBlock {
            Layout.fillWidth: true
            text: L10n.text("Twoje okładki czekają po drugiej stronie kabla.")
            font: Tokens.type.title3
            color: root.roles.text
            horizontalAlignment: Text.AlignHCenter
        }
        ProgressBar {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: 220
            visible: root.flow.loading
            roles: root.roles
            indeterminate: !root.flow.reading
            value: root.flow.progress
            Accessible.name: preparing.text
        }
        TextLine {
            id: preparing
            Layout.alignment: Qt.AlignHCenter
            visible: root.flow.loading
            text: L10n.text("Przygotowuję okładki…")
            font: Tokens.type.caption
            color: root.roles.textMuted
        }
        Button {
            objectName: "readAlbumsButton"
            Layout.alignment: Qt.AlignHCenter
            visible: !root.flow.loading
            enabled: root.flow.canRead
            kind: Button.Prominent
            measure: Button.Large
            roles: root.roles
            text: L10n.text("Odczytaj albumy z iPoda")
            onClicked: root.flow.read()
        }
    }
}
