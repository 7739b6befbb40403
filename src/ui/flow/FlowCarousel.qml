// The covers, moved by the wheel and by drags. A click on the one in the middle opens its album, on another brings it there.
import QtQuick
import Marlune

FlowStage {
    id: root

    required property CoverFlowPresenter flow

    property real lastDrag: 0 ///< logical pixels to the right

    pictures: root.flow.pictures
    count: root.flow.count
    index: root.flow.index
    reduceMotion: DesktopScheme.reducedMotion
    Accessible.role: Accessible.List
    Accessible.name: L10n.text("Albumy")
    onStepped: steps => root.flow.select(root.flow.index + steps)

    Image { // the light on the floor
        readonly property int around: 135

        x: root.width * 0.1 - around
        y: root.height / 2 + root.coverSide * 0.7 - height / 2
        width: root.width * 0.8 + 2 * around
        height: 90 + 2 * around
        source: "image://stage/light"
        asynchronous: true
    }
    Connections {
        target: root.flow
        function onItemsChanged() {
            root.settle();
        }
    }
    FrameAnimation {
        running: root.moving
        onTriggered: root.advance(frameTime)
    }
    DragHandler {
        id: drag
        target: null
        dragThreshold: 25
        yAxis.enabled: false
        grabPermissions: PointerHandler.CanTakeOverFromAnything
        onCentroidChanged: if (drag.active) root.lastDrag = centroid.position.x - centroid.pressPosition.x
        onActiveChanged: {
            if (!drag.active) {
                root.flow.select(root.flow.index + root.stepsOfDrag(root.lastDrag));
            }
            root.lastDrag = 0;
        }
    }
    Repeater {
        model: root.cards

        FlowPicture {
            id: card

            readonly property bool middle: card.place === root.flow.index
            readonly property string hint: L10n.text(card.middle ? "Otwórz album" : "Przesuń na środek")

            function act() {
                if (card.middle) {
                    root.flow.openDetail();
                } else {
                    root.flow.select(card.place);
                }
            }

            Accessible.role: Accessible.Button
            Accessible.name: card.place < root.flow.count ? root.flow.nameAt(card.place) : ""
            Accessible.description: card.hint
            Accessible.onPressAction: card.act()

            TapHandler {
                onTapped: card.act()
            }
            HoverHandler {
                onHoveredChanged: hovered ? Hints.show(floor, card.hint) : Hints.hide(floor)
            }
            Item { // the hint is shown on the reflection rather than on the album's names
                id: floor
                width: parent.width
                height: width
            }
        }
    }
}
