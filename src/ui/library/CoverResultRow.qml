// A release that was found: its picture, its names, and how to take it or read about it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

T.ItemDelegate {
    id: root

    required property string albumTitle
    required property string facts
    required property string picture ///< name in the cover store, empty while there is none
    required property bool awaited ///< it may still come
    required property bool current
    required property bool canDownload

    readonly property int side: Math.round(72 * Tokens.type.scale)

    signal chosen
    signal sourceWanted

    implicitHeight: root.side + topPadding + bottomPadding
    horizontalPadding: Tokens.space.tight
    verticalPadding: Tokens.space.regular
    // What has the focus has to stay a stop.
    focusPolicy: root.current || root.activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.name: root.albumTitle
    Accessible.description: root.facts
    Accessible.onPressAction: root.take()
    Keys.onReturnPressed: root.take()
    Keys.onEnterPressed: root.take()

    function take() {
        if (root.canDownload) {
            root.chosen();
        }
    }

    contentItem: RowLayout {
        spacing: Tokens.space.wide

        CoverView {
            Layout.preferredWidth: root.side
            Layout.preferredHeight: root.side
            cover: root.picture
            decodeSide: root.side
            standIn: root.awaited ? "" : "photo.badge.exclamationmark"
        }
        ColumnLayout {
            spacing: 2

            Line {
                font: Tokens.type.headline
                color: Tokens.color.text
                text: root.albumTitle
            }
            Line {
                font: Tokens.type.caption
                text: root.facts
            }
        }
        ColumnLayout {
            spacing: Tokens.space.hair

            RowButton {
                stop: root.current
                about: root.albumTitle
                objectName: "downloadButton"
                Layout.minimumWidth: implicitWidth
                text: L10n.text("Pobierz i dodaj")
                enabled: root.canDownload
                onClicked: root.chosen()
            }
            RowButton {
                stop: root.current
                about: root.albumTitle
                objectName: "sourceButton"
                Layout.alignment: Qt.AlignHCenter
                kind: Button.Borderless
                text: L10n.text("Źródło")
                onClicked: root.sourceWanted()
            }
        }
    }
    background: Rectangle {
        radius: Tokens.radius.control
        color: root.hovered ? Tokens.color.hover : "transparent"

        Divider {
            anchors.bottom: parent.bottom
            x: root.leftPadding
            width: parent.width - 2 * x
        }
        FocusRing {
            shown: root.visualFocus
        }
    }

    component Line: TextBlock {
        Layout.fillWidth: true
        Layout.preferredWidth: 1 // the buttons keep theirs
        maximumLineCount: 2
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    component RowButton: Button {
        required property bool stop ///< of the Tab key
        required property string about

        measure: Button.Small
        focusPolicy: stop || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
        Accessible.name: text + ": " + about
    }
}
