// Says that the window waits for the work to end before it closes.
import QtQuick
import QtQuick.Layouts
import Marlune

Rectangle {
    id: root

    signal stay

    implicitHeight: row.implicitHeight + 2 * Tokens.space.tight
    color: Tokens.color.card
    Accessible.role: Accessible.AlertMessage
    Accessible.name: words.text

    RowLayout {
        id: row
        anchors.verticalCenter: parent.verticalCenter
        x: 26
        width: root.width - 52
        spacing: Tokens.space.regular

        TextBlock {
            id: words
            objectName: "closingNotice"
            Layout.fillWidth: true
            text: L10n.text(
                "Okno zamknie się samo, gdy tylko praca dobiegnie końca. Żaden zapis nie zostanie przerwany.")
            color: Tokens.color.text
            Accessible.ignored: true // said by the notice
        }
        Button {
            objectName: "stayOpenButton"
            kind: Button.Borderless
            text: L10n.text("Nie zamykaj")
            onClicked: root.stay()
        }
    }
}
