// A heading or a link of the handbook for those who use no mouse or do not see it. A link is a stop of the Tab key,
// with a ring around its words; a heading takes the focus when a link has led there, so that the next stop is the one
// after it.
pragma ComponentBehavior: Bound

import QtQuick
import Marlune

Item {
    id: root

    required property string text
    required property string target ///< empty: a heading
    required property string anchor ///< may be empty
    required property var areas ///< a rectangle for each line that it stands on

    readonly property bool isLink: root.target !== ""
    readonly property bool visualFocus: root.isLink && root.activeFocus

    signal followed

    x: Math.min(...root.areas.map(area => area.x))
    y: root.areas[0].y
    width: Math.max(...root.areas.map(area => area.right)) - x
    height: root.areas[root.areas.length - 1].bottom - y
    activeFocusOnTab: root.isLink || root.activeFocus // what has the focus has to stay a stop
    Accessible.role: root.isLink ? Accessible.Link : Accessible.Heading
    Accessible.name: root.text
    Accessible.focusable: root.isLink
    Accessible.onPressAction: root.followed()
    Keys.enabled: root.isLink
    Keys.onReturnPressed: root.followed()
    Keys.onEnterPressed: root.followed()

    Repeater {
        model: root.visualFocus ? root.areas : []

        Item {
            required property rect modelData

            x: modelData.x - root.x
            y: modelData.y - root.y
            width: modelData.width
            height: modelData.height

            FocusRing {
                shown: true
                around: 2
            }
        }
    }
}
