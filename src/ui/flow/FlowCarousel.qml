// The covers, moved by the wheel and by drags. A click on the one in the middle opens its album, on another brings it there.
import QtQuick
import Marlune

FlowStage {
    id: root

    required property CoverFlowPresenter flow

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
            root.renew(root.flow.index);
        }
    }
    FrameAnimation {
        running: root.moving
        onTriggered: root.advance(frameTime)
    }
    DragHandler {
        target: null
        dragThreshold: 25
        yAxis.enabled: false
        grabPermissions: PointerHandler.CanTakeOverFromAnything
        onGrabChanged: (transition, point) => {
            if (transition === PointerDevice.UngrabExclusive) { // let go, not taken away
                root.flow.select(root.flow.index + root.stepsOfDrag(point.position.x - point.pressPosition.x));
            }
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

            onHintChanged: if (hover.hovered) Hints.show(floor, card.hint)
            Accessible.role: Accessible.Button
            Accessible.name: card.place < root.flow.count ? root.flow.nameAt(card.place) : ""
            Accessible.description: card.place + 1 + " / " + root.flow.count + ". " + card.hint
            Accessible.onPressAction: card.act()

            TapHandler {
                gesturePolicy: TapHandler.ReleaseWithinBounds // which the cover below is not told of
                onTapped: card.act()
            }
            HoverHandler {
                id: hover
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
