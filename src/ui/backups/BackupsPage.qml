// The copies of settings, themes and covers on the computer.
import QtQuick
import QtQuick.Layouts
import Marlune

PageColumn {
    id: root

    required property MarluneModel model
    required property BackupsPresenter backups

    around: 28
    spacing: 22

    RowLayout {
        spacing: Tokens.space.wide

        PageHeader {
            Layout.fillWidth: true
            title: "Kopie zapasowe"
            subtitle: "Ustawienia i motywy bezpiecznie na Twoim Macu."
        }
        Button {
            objectName: "backUpButton"
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 3
            kind: Button.Prominent
            text: L10n.text("Utwórz kopię")
            enabled: root.backups.canBackUp
            onClicked: root.model.backup()
        }
    }
    TextBlock {
        Layout.fillWidth: true
        text: L10n.text("Kopie zawierają konfigurację, motywy, fonty i ich zasoby. "
            + "Muzyka oraz firmware nie są częścią kopii. "
            + "Przywracanie jest na razie ręczne przez Finder.")
        lineHeight: 1.2
    }
    FileList {
        Layout.fillWidth: true
        Layout.fillHeight: true
        files: root.backups.backups
        title: L10n.text("Kopie zapasowe")
        symbol: "archivebox"
        actionText: L10n.text("Otwórz")
        emptySymbol: "clock.arrow.circlepath"
        emptyTitle: L10n.text("Spokojnie eksperymentuj z motywami")
        emptyDetail: L10n.text("Przed instalacją motywu kopia tworzy się automatycznie.")
        onChosen: row => root.backups.open(row)
    }
}
