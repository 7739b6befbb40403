// One of several values, behind a button that shows the present one after its title.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

T.ComboBox {
    id: root

    required property string title
    required property var values ///< texts
    property string value

    readonly property int gap: Tokens.space.tight - 2
    /// With room for each of the values; where it is not given, the title is left out.
    readonly property real leastWidth: barestWidth + heading.implicitWidth + root.gap
    readonly property real barestWidth: leftPadding + rightPadding + root.gap + Math.ceil(widest.implicitWidth)
        + Tokens.height.symbol

    signal picked(string value)

    implicitWidth: 185
    implicitHeight: Tokens.height.regular
    leftPadding: Tokens.space.regular
    rightPadding: Tokens.space.tight
    model: root.values
    currentIndex: root.values.indexOf(root.value)
    displayText: L10n.text(root.value)
    font: Tokens.type.subheadlineStrong
    focusPolicy: Qt.StrongFocus
    opacity: root.enabled ? 1 : Tokens.color.disabled
    Accessible.name: root.title
    Accessible.description: root.displayText
    Keys.onPressed: event => {
        choices.byMouse = false;
        event.accepted = false;
    }
    // On release, where the template takes Return for "close".
    Keys.onReleased: event => {
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !root.popup.visible) {
            root.popup.open();
            event.accepted = true;
        }
    }
    onActivated: index => root.picked(root.values[index])
    onHoveredChanged: root.hovered ? Hints.show(root, shown.truncated ? root.displayText : "") : Hints.hide(root)

    contentItem: Row {
        spacing: root.gap

        Text {
            id: heading
            visible: root.width >= Math.floor(root.leastWidth)
            text: root.title
            textFormat: Text.PlainText
            font: Tokens.type.subheadline
            color: Tokens.color.textMuted
            anchors.verticalCenter: parent.verticalCenter
        }
        Text {
            id: shown
            width: Math.min(implicitWidth, root.availableWidth - x - Tokens.height.symbol)
            text: root.displayText
            textFormat: Text.PlainText
            font: root.font
            color: Tokens.color.text
            elide: Text.ElideRight
            anchors.verticalCenter: parent.verticalCenter
        }
    }
    Text {
        id: widest
        visible: false
        text: root.values.map(value => L10n.text(value)).join("\n")
        textFormat: Text.PlainText
        font: root.font
    }

    indicator: Icon {
        x: root.width - width - root.rightPadding
        y: (root.height - height) / 2
        symbol: "chevron.up.chevron.down"
        color: Tokens.color.textMuted
    }
    background: Rectangle {
        radius: Tokens.radius.control
        color: Tokens.color.card
        border.color: Tokens.color.line

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.down ? Tokens.color.pressed : Tokens.color.hover
            visible: root.enabled && (root.down || root.hovered)
        }
        FocusRing {
            shown: root.visualFocus
        }
    }
    delegate: ChoiceItem {
        required property int index
        required property string modelData

        width: ListView.view?.width ?? implicitWidth
        text: L10n.text(modelData)
        hoverEnabled: choices.byMouse
        marked: root.currentIndex === index
        highlighted: root.highlightedIndex === index
    }
    popup: ChoicePopup {
        id: choices
        y: root.height + Tokens.space.hair
        width: root.width
        title: root.title
        choices: root.delegateModel
        current: root.highlightedIndex
    }
}
