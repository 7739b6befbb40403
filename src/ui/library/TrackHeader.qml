// The names of the track table's columns.
import QtQuick
import Marlune

Item {
    id: root

    required property TrackColumns columns

    implicitHeight: name.implicitHeight + Tokens.space.regular

    Name {
        width: root.columns.chosen
        horizontalAlignment: Text.AlignHCenter
        text: L10n.text("Wybór")
    }
    Name {
        id: name
        x: root.columns.titleX
        width: root.columns.title
        leftPadding: Tokens.height.small
        text: L10n.text("Tytuł i wykonawca")
    }
    Name {
        x: root.columns.timeX
        width: root.columns.time
        horizontalAlignment: Text.AlignRight
        text: L10n.text("Czas")
    }
    Name {
        x: root.columns.formatX
        width: root.columns.format
        text: L10n.text("Format")
    }
    Name {
        x: root.columns.parametersX
        width: root.columns.parameters
        text: L10n.text("Parametry")
    }
    Divider {
        anchors.bottom: parent.bottom
        width: parent.width
    }

    component Name: TextLine {
        y: Tokens.space.hair
        font: Tokens.type.caption
        color: Tokens.color.textMuted
    }
}
