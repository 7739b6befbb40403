// The album in the middle: its names, its place, and what can be done with it.
import QtQuick
import QtQuick.Layouts
import Marlune

ColumnLayout {
    id: root

    required property CoverFlowPresenter flow
    required property ColorRoles roles

    spacing: Tokens.space.hair

    TextLine {
        objectName: "flowTitle"
        Layout.fillWidth: true
        text: root.flow.albumTitle
        font: Tokens.type.of(23, Font.DemiBold)
        color: root.roles.text
        horizontalAlignment: Text.AlignHCenter
    }
    TextLine {
        Layout.fillWidth: true
        text: root.flow.artist
        font: Tokens.type.title3
        color: root.roles.textMuted
        horizontalAlignment: Text.AlignHCenter
    }
    TextLine {
        objectName: "flowFacts"
        Layout.fillWidth: true
        text: root.flow.facts
        font: Tokens.type.caption
        color: root.roles.textMuted
        horizontalAlignment: Text.AlignHCenter
    }
    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: Tokens.space.tight
        spacing: Tokens.space.regular

        Button {
            objectName: "flowPrevious"
            roles: root.roles
            symbol: "chevron.left"
            toolTip: L10n.text("Poprzedni album")
            onClicked: root.flow.select(root.flow.index - 1)
        }
        Button {
            objectName: "flowOpen"
            kind: Button.Prominent
            roles: root.roles
            text: L10n.text("Otwórz album")
            onClicked: root.flow.openDetail()
        }
        Button {
            objectName: "flowPlay"
            roles: root.roles
            symbol: "play.fill"
            text: L10n.text("Odsłuchaj")
            onClicked: root.flow.play()
        }
        Button {
            objectName: "flowNext"
            roles: root.roles
            symbol: "chevron.right"
            toolTip: L10n.text("Następny album")
            onClicked: root.flow.select(root.flow.index + 1)
        }
    }
}
