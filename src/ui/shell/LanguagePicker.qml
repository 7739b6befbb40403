// The choice of the language at the sidebar's foot.
import QtQuick
import Marlune

SegmentedPicker {
    id: root

    readonly property var choices: ["pl", "en", "system"]

    objectName: "languagePicker"
    title: L10n.text("Język")
    values: ["PL", "EN", "Automatycznie"]
    value: root.values[root.choices.indexOf(Language.choice)]
    onPicked: value => Language.choice = root.choices[root.values.indexOf(value)]
}
