// What the guide is, and which of its two parts is shown. Moves with what lies below it.
import QtQuick
import QtQuick.Layouts
import Marlune

FocusScope {
    id: root

    required property string page
    required property Flickable scrolledBy

    signal picked(string page)

    implicitHeight: stack.implicitHeight

    ColumnLayout {
        id: stack
        width: root.width
        spacing: 0

        TextLine {
            Layout.fillWidth: true
            text: L10n.text("Drugie życie iPoda")
            font: Tokens.type.of(28, Font.Bold)
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Tokens.type.title.pixelSize
            Accessible.role: Accessible.Heading
        }
        TextBlock {
            Layout.fillWidth: true
            Layout.topMargin: 2
            text: L10n.text(
                "Rockbox od pierwszego uruchomienia po rozwiązywanie kłopotów, i wszystkie iPody, jakie powstały.")
        }
        SegmentedPicker {
            objectName: "guidePages"
            Layout.topMargin: Tokens.space.wide
            Layout.preferredWidth: Math.min(implicitWidth, root.width)
            title: L10n.text("Sekcja")
            values: ["Poradnik", "Modele"]
            value: root.page
            onPicked: value => root.picked(value)
        }
    }
}
