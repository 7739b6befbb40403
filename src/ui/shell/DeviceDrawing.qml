// A plain portrait of a player: body, screen with a cover, wheel. 200 wide unless set otherwise.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Item {
    id: root

    property bool lit: true ///< the screen shows something

    readonly property real unit: root.width / 200

    implicitWidth: 200
    implicitHeight: 300
    Accessible.role: Accessible.Graphic
    Accessible.name: L10n.text("Rysunek odtwarzacza")

    Rectangle {
        id: body
        anchors.fill: parent
        radius: 22 * root.unit
        border.color: Tokens.color.line
        gradient: Gradient {
            GradientStop { position: 0; color: Tokens.color.dark ? "#3C3D42" : "#FDFDFE" }
            GradientStop { position: 1; color: Tokens.color.dark ? "#2A2B2F" : "#E4E5E9" }
        }

        Shadow {
            around: Math.round(body.radius)
            blur: 16
            drop: 6
        }
    }
    Rectangle {
        id: screen
        x: 20 * root.unit
        y: 20 * root.unit
        width: 160 * root.unit
        height: 112 * root.unit
        radius: 8 * root.unit
        color: "#10131A"

        Rectangle {
            visible: root.lit
            x: 14 * root.unit
            y: 18 * root.unit
            width: 62 * root.unit
            height: width
            radius: 5 * root.unit
            gradient: Gradient {
                GradientStop { position: 0; color: "#2C4FB0" }
                GradientStop { position: 1; color: "#58B4E6" }
            }

            Rectangle {
                x: 19 * root.unit
                y: 12 * root.unit
                width: 26 * root.unit
                height: width
                radius: width / 2
                color: "#F4F8FF"
            }
            Rectangle {
                y: 44 * root.unit
                width: parent.width
                height: 18 * root.unit
                radius: 5 * root.unit
                color: "#1E3A8C"
            }
        }
        Column {
            visible: root.lit
            x: 86 * root.unit
            y: 22 * root.unit
            spacing: 8 * root.unit

            Repeater {
                model: [58, 44, 50]
                Rectangle {
                    required property int modelData
                    required property int index
                    width: modelData * root.unit
                    height: 6 * root.unit
                    radius: height / 2
                    color: index === 0 ? "#E9EEF7" : "#7C869A"
                }
            }
        }
        Rectangle {
            visible: root.lit
            x: 14 * root.unit
            y: 94 * root.unit
            width: 132 * root.unit
            height: 4 * root.unit
            radius: height / 2
            color: "#343B4A"

            Rectangle {
                width: parent.width * 0.42
                height: parent.height
                radius: parent.radius
                color: "#58B4E6"
            }
        }
    }
    Rectangle {
        id: wheel
        anchors.horizontalCenter: parent.horizontalCenter
        y: 152 * root.unit
        width: 124 * root.unit
        height: width
        radius: width / 2
        color: Tokens.color.dark ? "#1F2023" : "#F6F6F8"
        border.color: Tokens.color.line

        Repeater {
            model: 4
            Rectangle {
                id: mark

                required property int index

                width: 10 * root.unit
                height: 3 * root.unit
                radius: height / 2
                color: Tokens.color.textMuted
                opacity: 0.6
                x: (wheel.width - width) / 2
                y: 12 * root.unit
                transform: Rotation {
                    origin.x: 5 * root.unit
                    origin.y: wheel.height / 2 - 12 * root.unit
                    angle: 90 * mark.index
                }
            }
        }
        Rectangle {
            anchors.centerIn: parent
            width: 46 * root.unit
            height: width
            radius: width / 2
            color: Tokens.color.dark ? "#34353A" : "#E6E7EB"
            border.color: Tokens.color.line
        }
    }
}
