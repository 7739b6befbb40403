// One finding with what can be done about it. Shows what it is given, reports clicks, decides nothing.
//
// The row is one stop for the Tab key while it is the current one, and so are its buttons.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property string kind
    required property string title
    required property string detail
    required property string places
    required property bool hasPicture
    required property bool current
    required property bool canRepair // no other work is under way

    signal repairWanted
    signal lookupWanted
    signal coverWanted
    signal albumWanted
    signal filesWanted

    readonly property bool isOfCovers: root.kind === "Okładki"

    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: Tokens.space.wide
    verticalPadding: Tokens.space.regular
    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.name: root.title + ". " + root.detail
    Accessible.description: root.places

    contentItem: RowLayout {
        spacing: Tokens.space.regular

        KindIcon {
            Layout.alignment: Qt.AlignTop
            kind: root.kind
            side: Tokens.height.symbol + 4
        }
        ColumnLayout {
            spacing: 3

            TextLine {
                Layout.fillWidth: true
                text: root.title
                font: Tokens.type.headline
                Accessible.ignored: true
            }
            TextBlock {
                Layout.fillWidth: true
                text: root.detail
                Accessible.ignored: true
            }
            TextBlock {
                Layout.fillWidth: true
                visible: text !== ""
                text: root.places
                font: Tokens.type.caption2
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                Accessible.ignored: true
            }
            Flow {
                Layout.fillWidth: true
                Layout.topMargin: Tokens.space.hair
                spacing: Tokens.space.tight

                Button {
                    objectName: "repairButton"
                    visible: root.isOfCovers && root.hasPicture
                    enabled: root.canRepair
                    measure: Button.Small
                    focusPolicy: root.current || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                    text: L10n.text("Napraw dla Rockbox")
                    onClicked: root.repairWanted()
                }
                Button {
                    objectName: "lookUpCoverButton"
                    visible: root.isOfCovers
                    measure: Button.Small
                    focusPolicy: root.current || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                    text: L10n.text("Znajdź w sieci…")
                    onClicked: root.lookupWanted()
                }
                Button {
                    objectName: "chooseCoverButton"
                    visible: root.isOfCovers
                    enabled: root.canRepair
                    measure: Button.Small
                    focusPolicy: root.current || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                    text: L10n.text("Wybierz okładkę…")
                    onClicked: root.coverWanted()
                }
                Button {
                    objectName: "openAlbumButton"
                    visible: !root.isOfCovers
                    measure: Button.Small
                    focusPolicy: root.current || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                    text: L10n.text("Otwórz album")
                    onClicked: root.albumWanted()
                }
                Button {
                    objectName: "revealButton"
                    visible: !root.isOfCovers
                    measure: Button.Small
                    focusPolicy: root.current || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                    text: L10n.text("Pokaż pliki")
                    onClicked: root.filesWanted()
                }
            }
        }
    }
    background: Rectangle {
        radius: Tokens.radius.card
        color: Tokens.color.card
        border.color: Tokens.color.line

        FocusRing {
            shown: root.visualFocus
            around: parent.radius
        }
    }
}
