// What menus and lists of choices lie on.
import QtQuick
import Marlune

Rectangle {
    radius: Tokens.radius.control + 2
    color: Tokens.color.raised
    border.color: Tokens.color.line

    Shadow {
        around: parent.radius
    }
}
