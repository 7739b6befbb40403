// The named text styles, in logical pixels of a desktop with text of usual size.
import QtQuick

QtObject {
    id: root

    property string family
    property real scale: 1

    readonly property font title: root.of(22, Font.Bold)
    readonly property font title2: root.of(18, Font.DemiBold)
    readonly property font title3: root.of(16, Font.Medium)
    readonly property font headline: root.of(14, Font.DemiBold)
    readonly property font body: root.of(14, Font.Normal)
    readonly property font bodyStrong: root.of(14, Font.Medium)
    readonly property font subheadline: root.of(13, Font.Normal)
    readonly property font subheadlineStrong: root.of(13, Font.Medium)
    readonly property font caption: root.of(12, Font.Normal)
    readonly property font caption2: root.of(11, Font.Normal)

    /// A style of its own, for the few places that have one.
    function of(size: real, weight: int): font {
        return root.spaced(size, weight, size >= 22 ? -0.01 * Math.round(size * root.scale) : 0);
    }
    /// The same with a distance between the letters.
    function spaced(size: real, weight: int, letterSpacing: real): font {
        return Qt.font({
            family: root.family,
            pixelSize: Math.round(size * root.scale),
            weight: weight,
            letterSpacing: letterSpacing
        });
    }
}
