// The drawn iPod beside its name and what it says of itself.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Marlune

RowLayout {
    id: root

    required property MarluneModel model
    required property DevicePresenter device

    spacing: Tokens.space.section

    IPodView {
        id: drawing
        Layout.alignment: Qt.AlignTop
        Layout.preferredWidth: 220
        model: root.model
        preview: root.device.themePicture
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.alignment: Qt.AlignVCenter
        spacing: Tokens.space.tight

        RowLayout {
            spacing: Tokens.space.tight

            Icon {
                symbol: "circle.fill"
                color: root.device.testFolder ? Tokens.color.warning : Tokens.color.good
                side: Math.round(10 * Tokens.type.scale)
            }
            TextLine {
                objectName: "deviceConnection"
                Layout.fillWidth: true
                text: root.device.connection
                font: Tokens.type.spaced(11, Font.DemiBold, 1.8)
                color: root.device.testFolder ? Tokens.color.warning : Tokens.color.good
            }
        }
        TextLine {
            objectName: "deviceModel"
            Layout.fillWidth: true
            text: root.device.modelName
            font: Tokens.type.of(38, Font.Bold)
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Tokens.type.title2.pixelSize
            Accessible.role: Accessible.Heading
        }
        TextLine {
            objectName: "deviceNameAndVersion"
            Layout.fillWidth: true
            text: root.device.nameAndVersion
            font: Tokens.type.subheadline
            color: Tokens.color.textMuted
        }
        DeviceFacts {
            Layout.fillWidth: true
            Layout.leftMargin: -padding // its texts are in line with those above and below
            Layout.rightMargin: -padding
            Layout.preferredHeight: wholeHeight
            room: root.width - drawing.Layout.preferredWidth - root.spacing + 2 * padding
            labels: root.device.factLabels
            values: root.device.facts
        }
        TextField {
            objectName: "deviceDescription"
            Layout.fillWidth: true
            placeholderText: L10n.text("Twój opis sprzętu: model, iFlash, bateria…")
            text: root.device.description
            maximumLength: 500
            onTextEdited: root.device.description = text
        }
        TextBlock {
            objectName: "deviceSupport"
            Layout.fillWidth: true
            text: root.device.support
            font: Tokens.type.caption
        }
    }
}
