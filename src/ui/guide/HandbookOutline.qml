// The handbook's sections beside its text, with the one that is being read. One stop for the Tab key; the arrows
// choose.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

Column {
    id: root

    required property var sections ///< each has "text" and "anchor"
    required property string current

    signal picked(string anchor)

    function pick(place: int) {
        if (place >= 0 && place < rows.count) {
            rows.itemAt(place).forceActiveFocus(Qt.TabFocusReason);
            root.picked(root.sections[place].anchor);
        }
    }

    Accessible.role: Accessible.Grouping
    Accessible.name: L10n.text("Rozdziały")

    Repeater {
        id: rows
        model: root.sections

        T.AbstractButton {
            id: row

            required property var modelData
            required property int index

            readonly property bool current: modelData.anchor === root.current

            width: root.width
            implicitHeight: implicitContentHeight + topPadding + bottomPadding
            horizontalPadding: Tokens.space.tight
            verticalPadding: 5
            text: modelData.text
            focusPolicy: row.current || row.activeFocus || (root.current === "" && row.index === 0)
                ? Qt.StrongFocus : Qt.ClickFocus
            font: row.current ? Tokens.type.subheadlineStrong : Tokens.type.subheadline
            Accessible.name: row.text
            onClicked: root.picked(modelData.anchor)
            Keys.onReturnPressed: row.clicked()
            Keys.onUpPressed: root.pick(index - 1)
            Keys.onDownPressed: root.pick(index + 1)

            contentItem: TextLine {
                text: row.text
                font: row.font
                color: row.current ? Tokens.color.accent : Tokens.color.textMuted
                Accessible.ignored: true
            }
            background: Rectangle {
                radius: Tokens.radius.control
                color: row.down ? Tokens.color.pressed : row.hovered ? Tokens.color.hover : "transparent"

                FocusRing {
                    shown: row.visualFocus
                }
            }
        }
    }
}
