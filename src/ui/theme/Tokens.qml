// Everything that makes the pages one family: colour, type, space, shape, motion.
pragma Singleton

import QtQuick
import Marlune

QtObject {
    id: root

    readonly property ColorRoles color: ColorRoles {
        dark: DesktopScheme.dark
    }
    readonly property TypeStyles type: TypeStyles {
        family: DesktopScheme.fontFamily
        scale: DesktopScheme.textScale
    }
    readonly property Space space: Space {}
    readonly property Radius radius: Radius {}
    readonly property Height height: Height {
        scale: Math.max(1, DesktopScheme.textScale)
    }
    readonly property Motion motion: Motion {
        still: DesktopScheme.reducedMotion
    }

    component Space: QtObject {
        readonly property int hair: 4
        readonly property int tight: 8
        readonly property int regular: 12
        readonly property int wide: 16
        readonly property int group: 24
        readonly property int section: 32
    }

    component Radius: QtObject {
        readonly property int control: 7
        readonly property int card: 12
        readonly property int cover: 8
        readonly property int sheet: 14
    }

    component Height: QtObject {
        property real scale: 1
        readonly property int small: Math.round(24 * scale)
        readonly property int regular: Math.round(30 * scale)
        readonly property int large: Math.round(38 * scale)
        readonly property int symbol: Math.round(16 * scale)
    }

    component Motion: QtObject {
        property bool still: false
        readonly property int state: still ? 0 : 120 ///< milliseconds, for hover, press and the like
        readonly property int appear: still ? 0 : 200 ///< for things that come and go
        readonly property int settle: 160 ///< a value at rest for so long is meant
        readonly property int hint: 600 ///< before a tooltip
        readonly property int sweep: 1200 ///< one pass of a bar without a value
    }
}
