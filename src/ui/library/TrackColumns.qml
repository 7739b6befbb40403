// Where the columns of the track table are: as wide as their texts need, the title's as wide as the rest. In a narrow
// window the last one gives way before the title does.
import QtQuick
import Marlune

QtObject {
    id: root

    required property real width ///< of all of them

    readonly property real scale: Math.max(1, Tokens.type.scale)
    readonly property int gap: root.width < 500 * root.scale ? Tokens.space.tight : Tokens.space.regular
    readonly property int leastTitle: Math.round(215 * root.scale)
    readonly property int leastParameters: Math.round(45 * root.scale)

    readonly property int rowHeight: Tokens.height.small + Tokens.space.tight
    readonly property int chosen: Math.round(42 * root.scale)
    readonly property int time: Math.round(44 * root.scale)
    readonly property int format: Math.round(45 * root.scale)
    readonly property int parameters: Math.max(root.leastParameters, Math.min(Math.round(140 * root.scale),
        root.width - root.chosen - root.time - root.format - 5 * root.gap - root.leastTitle))

    readonly property int titleX: root.chosen + root.gap
    readonly property int title: root.timeX - root.gap - root.titleX
    readonly property int timeX: root.formatX - root.gap - root.time
    readonly property int formatX: root.parametersX - root.gap - root.format
    readonly property int parametersX: root.width - root.parameters - root.gap
}
