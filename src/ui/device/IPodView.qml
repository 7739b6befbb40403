// The selected device as an iPod, with its colour and, on the screen, what its theme looks like. Three clicks in a row
// ask for the carousel.
import QtQuick
import Marlune

IPodIllustration {
    id: root

    required property MarluneModel model
    property string hint: L10n.text("Rok 2007… niektóre wspomnienia budzą się za trzecim razem.")

    property int clicks: 0
    property double lastClick: 0 ///< milliseconds

    /// `time` in milliseconds of any clock.
    function countClick(time: double) {
        root.clicks = time - root.lastClick <= Application.styleHints.mouseDoubleClickInterval ? root.clicks + 1 : 1;
        root.lastClick = time;
        if (root.clicks === 3) {
            root.model.revealCoverFlow();
        }
    }

    implicitWidth: 200
    profileId: root.model.deviceProfileId
    finish: root.model.deviceFinish
    Accessible.description: root.hint

    TapHandler {
        onTapped: root.countClick(Date.now())
    }
    HoverHandler {
        onHoveredChanged: hovered ? Hints.show(root, root.hint) : Hints.hide(root)
    }
}
