// A hairline between two areas; upright where `vertical`.
import QtQuick
import Marlune

Rectangle {
    property bool vertical: false

    implicitWidth: 1
    implicitHeight: 1
    width: vertical ? 1 : undefined
    height: vertical ? undefined : 1
    color: Tokens.color.line
    Accessible.ignored: true
}
