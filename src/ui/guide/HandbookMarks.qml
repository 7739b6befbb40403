// What is drawn below the handbook's words: grounds of remarks, rules, and what a search has found.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Item {
    id: root

    required property HandbookDocument book
    required property HandbookStyle looks

    Repeater {
        model: root.book.grounds

        Rectangle {
            required property var modelData

            y: modelData.area.y - root.looks.groundMargin
            width: root.width
            height: modelData.area.height + 2 * root.looks.groundMargin
            radius: Tokens.radius.cover
            color: modelData.color
        }
    }
    Repeater {
        model: root.book.rules

        Rectangle {
            required property rect modelData

            y: Math.round(modelData.y)
            width: root.width
            height: 1
            color: Tokens.color.line
        }
    }
    Repeater {
        model: root.book.marks

        Rectangle {
            required property rect modelData

            x: modelData.x
            y: modelData.y
            width: modelData.width
            height: modelData.height
            radius: 2
            color: Tokens.color.found
        }
    }
    Repeater {
        model: root.book.currentMarks

        Rectangle {
            required property rect modelData

            x: modelData.x - 1
            y: modelData.y - 1
            width: modelData.width + 2
            height: modelData.height + 2
            radius: 3
            color: Tokens.color.foundNow
        }
    }
}
