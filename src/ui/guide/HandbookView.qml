// The handbook to be read: the text in a column of a book's width, with what is drawn beside its words.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Marlune

Item {
    id: root

    required property real around
    required property real headRoom ///< above the text, for the page's head

    readonly property alias view: flick
    readonly property real covered: bar.height + Tokens.space.wide ///< by the bar, and some room below it
    readonly property real outlineWidth: Math.round(230 * Math.max(1, Tokens.type.scale))
    readonly property bool outlined: root.width
        >= style.line + root.outlineWidth + 2 * root.around + Tokens.space.section

    function scrollTo(y: real) {
        flick.contentY = Math.max(-flick.topMargin,
            Math.min(y, flick.contentHeight + flick.bottomMargin - flick.height));
    }

    Component.onCompleted: handbook.target = words.textDocument // what it is given before, it empties
    HandbookStyle {
        id: style
    }
    HandbookDocument {
        id: handbook
        styleSheet: style.sheet
        top: flick.contentY + root.covered
        viewHeight: flick.height - root.covered
        wanted: findBar.wanted
        onLedTo: part => parts.itemAt(part)?.forceActiveFocus(Qt.OtherFocusReason)
        onScrollWanted: top => root.scrollTo(top - root.covered)
    }
    Shortcut {
        sequence: "Ctrl+F"
        enabled: root.visible
        onActivated: findBar.open()
    }
    Flickable {
        id: flick

        readonly property alias covered: bar.height ///< where the focus must not be

        objectName: "handbook"
        anchors.fill: parent
        topMargin: root.headRoom + bar.height + Tokens.space.tight
        onTopMarginChanged: if (contentY <= 0) contentY = -topMargin
        contentWidth: width
        contentHeight: words.height
        bottomMargin: Tokens.space.section
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width
            y: bar.y + bar.height
            height: root.height - y
        }

        Item {
            // A wide page has the sections at the left and the text in the middle.
            x: root.outlined
                ? Math.max(root.around + root.outlineWidth + Tokens.space.section, (flick.width - width) / 2)
                : root.around
            width: Math.min(style.line, flick.width - 2 * root.around)
            height: words.height

            HandbookMarks {
                width: words.width
                book: handbook
                looks: style
            }
            TextEdit {
                id: words

                property bool ringed: false ///< the keyboard has come here by a key

                objectName: "handbookText"
                width: parent.width
                readOnly: true
                textFormat: TextEdit.RichText
                wrapMode: TextEdit.Wrap
                font: style.body
                color: Tokens.color.text
                selectByMouse: true
                selectionColor: Tokens.color.accent
                selectedTextColor: Tokens.color.textOnAccent
                activeFocusOnTab: true
                onActiveFocusChanged: words.ringed = words.activeFocus && !press.pressed
                onLinkActivated: link => handbook.follow(link)
                onLinkHovered: link => link.startsWith("https:") ? Hints.show(words, link) : Hints.hide(words)
                Accessible.role: Accessible.EditableText // the one role whose words a screen reader can go through
                Accessible.readOnly: true
                Accessible.multiLine: true
                Accessible.name: L10n.text("Poradnik Rockbox")

                TapHandler {
                    id: press
                    onPressedChanged: if (pressed) words.ringed = false
                }
                HoverHandler {
                    cursorShape: words.hoveredLink === "" ? Qt.IBeamCursor : Qt.PointingHandCursor
                }
            }
            Repeater {
                id: parts
                model: handbook.parts

                HandbookPart {
                    required property var modelData

                    text: modelData.text
                    target: modelData.target
                    anchor: modelData.anchor
                    areas: modelData.areas
                    onFollowed: handbook.follow(target)
                }
            }
        }
    }
    HandbookBar {
        id: bar
        y: Math.max(0, -flick.contentY - flick.topMargin + root.headRoom)
        width: root.width
        around: root.around
        english: handbook.english
        moved: flick.contentY > -root.covered
        onFindWanted: findBar.open()
        onEnglishPicked: english => handbook.english = english
    }
    HandbookOutline {
        x: root.around - Tokens.space.tight // its words, not its grounds, are in line with the title
        y: bar.y + bar.height + Tokens.space.tight
        width: root.outlineWidth
        visible: root.outlined && implicitHeight < root.height - bar.height - 2 * Tokens.space.wide
        sections: handbook.sections
        current: handbook.section
        onPicked: anchor => handbook.goTo(anchor)
    }
    FindBar {
        id: findBar
        anchors.right: parent.right
        anchors.rightMargin: Tokens.space.wide
        y: bar.y + bar.height + Tokens.space.tight
        width: Math.min(implicitWidth, root.width - 2 * Tokens.space.wide)
        hitText: handbook.hitText
        found: handbook.hitCount > 0
        onStepped: forward => handbook.goToHit(forward)
        onClosed: words.forceActiveFocus()
    }
    FocusRing {
        anchors.margins: 0
        around: 0
        shown: words.activeFocus && words.ringed
    }
}
