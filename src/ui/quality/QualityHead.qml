// The quality page above its findings: what it is for, what can be done, and which findings are shown.
import QtQuick
import QtQuick.Layouts
import Marlune

FocusScope {
    id: root

    required property MarluneModel model
    required property QualityPresenter quality
    required property Flickable scrolledBy ///< the list that it moves with

    implicitHeight: stack.implicitHeight

    ColumnLayout {
        id: stack
        width: root.width
        spacing: 0

        TextLine {
            Layout.fillWidth: true
            text: L10n.text("Porządek w kolekcji")
            font: Tokens.type.of(28, Font.Bold)
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Tokens.type.title.pixelSize
            Accessible.role: Accessible.Heading
        }
        TextBlock {
            Layout.fillWidth: true
            Layout.topMargin: 2
            text: L10n.text("Sprawdź kolekcję i napraw okładki dla Rockbox. "
                + "Poprzednie obrazy z iPoda są zachowywane w kopii na Macu.")
        }
        QualityControls {
            Layout.fillWidth: true
            Layout.topMargin: Tokens.space.wide
            model: root.model
            quality: root.quality
        }
        GridLayout {
            Layout.fillWidth: true
            Layout.topMargin: Tokens.space.group
            // The counts are beside the heading where they fit.
            columns: heading.implicitWidth + columnSpacing + counts.wholeWidth > root.width ? 1 : 2
            columnSpacing: Tokens.space.wide
            rowSpacing: Tokens.space.tight

            TextLine {
                id: heading
                text: L10n.text("Problemy")
                font: Tokens.type.title2
                Accessible.role: Accessible.Heading
            }
            KindCounts {
                id: counts
                Layout.fillWidth: parent.columns === 1
                Layout.preferredWidth: counts.wholeWidth
                Layout.alignment: parent.columns === 1 ? Qt.AlignLeft : Qt.AlignRight
                kinds: root.quality.kinds
                counts: root.quality.counts
            }
        }
        SegmentedPicker {
            objectName: "issueFilter"
            Layout.topMargin: Tokens.space.regular
            Layout.preferredWidth: Math.min(implicitWidth, root.width)
            title: L10n.text("Problemy")
            values: root.quality.filters
            value: root.quality.filter
            onPicked: value => root.quality.filter = value
        }
    }
}
