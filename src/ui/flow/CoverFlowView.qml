// The carousel of the device's albums: a stage of covers, below it the album in the middle and what can be done with it.
import QtQuick
import QtQuick.Layouts
import Marlune

FocusScope {
    id: root

    required property CoverFlowPresenter flow
    required property PlaybackPresenter playback
    required property ColorRoles roles
    required property bool fullScreen

    readonly property bool empty: root.flow.count === 0

    signal fullScreenToggled
    signal closeWanted

    function takeFocus(byPicker: bool) {
        (root.empty ? root : carousel).forceActiveFocus();
    }
    /// The button that stands out: what Return does wherever it is pressed.
    function act() {
        if (!root.empty) {
            root.flow.openDetail();
        } else if (root.flow.canRead) {
            root.flow.read();
        }
    }
    function step(by: int) {
        root.flow.select(root.flow.index + by);
    }

    focus: true
    onEmptyChanged: if (!root.empty && root.activeFocus) carousel.forceActiveFocus() // what had it has gone
    Accessible.role: Accessible.Pane
    Accessible.name: "Cover Flow"
    Keys.onPressed: event => {
        const action = event.modifiers & ~Qt.KeypadModifier ? undefined : {
            [Qt.Key_Left]: () => root.step(-1),
            [Qt.Key_Right]: () => root.step(1),
            [Qt.Key_PageUp]: () => root.step(-6),
            [Qt.Key_PageDown]: () => root.step(6),
            [Qt.Key_Home]: () => root.flow.select(0),
            [Qt.Key_End]: () => root.flow.select(root.flow.count - 1),
            [Qt.Key_Return]: () => root.act(),
            [Qt.Key_Enter]: () => root.act(),
            [Qt.Key_Escape]: () => root.fullScreen ? root.fullScreenToggled() : root.closeWanted()
        }[event.key];
        action?.();
        event.accepted = Boolean(action);
    }

    Image { // the dark room
        anchors.fill: parent
        source: "image://stage/ground"
        fillMode: Image.TileHorizontally
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Tokens.space.group
        spacing: 18

        FlowHeader {
            Layout.fillWidth: true
            flow: root.flow
            roles: root.roles
            fullScreen: root.fullScreen
            onFullScreenToggled: root.fullScreenToggled()
            onCloseWanted: root.closeWanted()
        }
        FlowEmpty {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: root.empty
            flow: root.flow
            roles: root.roles
        }
        FlowCarousel {
            id: carousel
            objectName: "flowStage"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.leftMargin: -Tokens.space.group
            Layout.rightMargin: -Tokens.space.group
            visible: !root.empty
            flow: root.flow
        }
        FlowCaption {
            Layout.fillWidth: true
            visible: !root.empty
            flow: root.flow
            roles: root.roles
        }
        MiniPlayer {
            Layout.fillWidth: true
            visible: !root.empty && implicitHeight > 0
            playback: root.playback
            roles: root.roles
        }
        TextLine {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: parent.width
            visible: !root.empty
            text: L10n.text("Przesuwaj okładki gestem lub strzałkami. Kliknij środkową, aby zajrzeć do środka.")
            font: Tokens.type.caption
            color: root.roles.textMuted
        }
    }
    AlbumDetailView {
        objectName: "flowAlbumSheet"
        album: root.flow.detail
    }
}
