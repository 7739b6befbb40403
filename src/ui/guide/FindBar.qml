// Words to be found in the handbook, how many there are, and the way from one to the next. Lies over the text.
import QtQuick
import QtQuick.Layouts
import Marlune

MenuGround {
    id: root

    required property string hitText
    required property bool found

    readonly property string wanted: root.visible ? field.text : ""

    signal stepped(bool forward)
    signal closed

    function open() {
        root.visible = true;
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }
    function close() {
        root.visible = false;
        root.closed();
    }

    objectName: "findBar"
    visible: false
    implicitWidth: row.implicitWidth + 2 * Tokens.space.tight
    implicitHeight: row.implicitHeight + 2 * Tokens.space.tight
    Accessible.role: Accessible.Grouping
    Accessible.name: L10n.text("Znajdź w poradniku")
    Keys.onEscapePressed: root.close()

    MouseArea { // the text below gets no clicks
        anchors.fill: parent
    }
    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: Tokens.space.tight
        spacing: Tokens.space.hair

        SearchField {
            id: field
            objectName: "findField"
            Layout.fillWidth: true
            placeholderText: L10n.text("Znajdź w poradniku")
            Keys.onReturnPressed: event => root.stepped(!(event.modifiers & Qt.ShiftModifier))
            Keys.onEnterPressed: event => root.stepped(!(event.modifiers & Qt.ShiftModifier))
            Keys.onEscapePressed: root.close()
        }
        TextLine {
            objectName: "findCount"
            Layout.minimumWidth: Math.round(96 * Tokens.type.scale)
            horizontalAlignment: Text.AlignHCenter
            text: root.hitText
            font: Tokens.type.caption
            color: Tokens.color.textMuted
        }
        Button {
            kind: Button.Borderless
            tint: Tokens.color.text
            symbol: "chevron.up"
            toolTip: L10n.text("Poprzedni wynik")
            enabled: root.found
            onClicked: root.stepped(false)
        }
        Button {
            kind: Button.Borderless
            tint: Tokens.color.text
            symbol: "chevron.down"
            toolTip: L10n.text("Następny wynik")
            enabled: root.found
            onClicked: root.stepped(true)
        }
        Button {
            kind: Button.Borderless
            tint: Tokens.color.text
            symbol: "xmark"
            toolTip: L10n.text("Zamknij wyszukiwanie")
            onClicked: root.close()
        }
    }
}
