// What the carousel is, how many albums it has, and its window's buttons.
import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property CoverFlowPresenter flow
    required property ColorRoles roles
    required property bool fullScreen

    signal fullScreenToggled
    signal closeWanted

    spacing: Tokens.space.regular

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 2

        TextLine {
            Layout.fillWidth: true
            text: "Cover Flow"
            font: Tokens.type.of(18, Font.Bold)
            color: root.roles.text
            Accessible.role: Accessible.Heading
        }
        TextLine {
            Layout.fillWidth: true
            text: L10n.text("Sekret z 2007 · albumy z Twojego iPoda")
            font: Tokens.type.caption
            color: root.roles.textMuted
        }
    }
    TextLine {
        objectName: "flowCount"
        visible: root.flow.count > 0
        text: root.flow.countText
        font: Tokens.type.caption
        color: root.roles.textMuted
    }
    Button {
        objectName: "fullScreenButton"
        visible: root.flow.count > 0
        roles: root.roles
        symbol: root.fullScreen ? "arrow.down.right.and.arrow.up.left" : "arrow.up.left.and.arrow.down.right"
        toolTip: L10n.text(root.fullScreen ? "Wyjdź z pełnego ekranu" : "Pełny ekran")
        onClicked: root.fullScreenToggled()
    }
    Button {
        objectName: "flowCloseButton"
        roles: root.roles
        text: L10n.text("Zamknij")
        onClicked: root.closeWanted()
    }
}
