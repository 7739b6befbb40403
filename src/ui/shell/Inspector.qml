// The device at the right of every page but its own.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

Rectangle {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell

    readonly property bool anyOffered: root.shell.offeredDevices.length > 0
    readonly property int lowestDrawing: 135 ///< a lower window is scrolled
    readonly property int ringRoom: 4 ///< for the focus ring at the edges of what is scrolled

    color: Tokens.color.window

    Flickable {
        id: flick
        anchors.fill: parent
        anchors.margins: 24 - root.ringRoom
        anchors.bottomMargin: buttons.height + 24 + 18 - root.ringRoom
        contentHeight: stack.implicitHeight + 2 * root.ringRoom
        boundsBehavior: Flickable.StopAtBounds
        clip: contentHeight > height
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width
            y: flick.y
            height: flick.height
        }

        ColumnLayout {
            id: stack

            readonly property real othersHeight: heading.implicitHeight + state.implicitHeight + 16 + 3 * spacing
                + (root.shell.connected ? summary.implicitHeight
                    : root.anyOffered ? offered.implicitHeight : hint.implicitHeight)

            x: root.ringRoom
            y: root.ringRoom
            width: flick.width - 2 * root.ringRoom
            spacing: 18

            TextBlock {
                id: heading
                Layout.fillWidth: true
                text: L10n.text("Twój iPod")
                font: Tokens.type.of(25, Font.Bold)
                color: Tokens.color.text
                Accessible.role: Accessible.Heading
            }
            RowLayout {
                id: state
                spacing: 7

                Rectangle {
                    implicitWidth: 7
                    implicitHeight: 7
                    radius: 3.5
                    color: root.shell.connected ? Tokens.color.good : Tokens.color.textMuted
                }
                TextLine {
                    objectName: "connectionText"
                    text: L10n.text(root.shell.connected ? "Połączony" : "Czeka na połączenie")
                    font: Tokens.type.caption
                    color: Tokens.color.textMuted
                }
            }
            IPodView {
                objectName: "inspectorIPod"
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 8
                Layout.bottomMargin: 8
                Layout.preferredWidth: 200
                model: root.model
                preview: root.shell.themePicture
                maxHeight: Math.max(root.lowestDrawing,
                    Math.min(370, flick.height - 2 * root.ringRoom - stack.othersHeight))
                hint: L10n.text("Podgląd zapisanego motywu, bez odczytu ekranu na żywo. "
                    + "Rok 2007… niektóre wspomnienia budzą się za trzecim razem.")
            }
            DeviceSummary {
                id: summary
                Layout.fillWidth: true
                visible: root.shell.connected
                shell: root.shell
            }
            OfferedDevices {
                id: offered
                Layout.fillWidth: true
                visible: root.anyOffered
                names: root.shell.offeredDevices
                onChosen: place => root.shell.selectOffered(place)
            }
            TextBlock {
                id: hint
                objectName: "connectHint"
                Layout.fillWidth: true
                visible: !root.shell.connected && !root.anyOffered
                text: L10n.text("Podłącz iPoda przez USB. Rockbox powinien być widoczny jako dysk na Macu.")
                lineHeight: 1.2
            }
        }
    }
    ColumnLayout {
        id: buttons
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 24
        spacing: Tokens.space.regular

        Button {
            objectName: "chooseDeviceButton"
            Layout.fillWidth: true
            text: L10n.text("Wybierz urządzenie…")
            enabled: !root.model.busy
            onClicked: root.model.chooseDevice()
        }
        Button {
            objectName: "ejectButton"
            Layout.fillWidth: true
            measure: Button.Large
            symbol: "eject.fill"
            text: L10n.text("Wysuń iPoda")
            enabled: root.shell.canEject
            onClicked: root.model.eject()
        }
    }
}
