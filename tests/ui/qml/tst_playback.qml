// The bar of what is listened to: steered by keyboard, its failures, and large text.
import QtQuick
import QtTest
import Marlune

PageTest {
    id: root
    name: "Playback"
    width: 800
    height: 200

    Component {
        id: playerComponent
        MiniPlayer {
            width: 770
            height: implicitHeight
        }
    }

    property MiniPlayer player
    readonly property PlaybackPresenter playback: root.bench ? root.bench.playback : null

    function part(name) {
        return findChild(root.player, name);
    }
    function open() {
        root.player = make(playerComponent, { playback: root.bench.playback });
        root.bench.addSounds("Album");
        verify(!root.player.visible);
        root.bench.library.albums.play(0);
        tryCompare(root.playback, "playing", true);
        tryVerify(() => root.player.height > 50);
    }
    function press(name, key) {
        part(name).forceActiveFocus(Qt.TabFocusReason);
        verify(part(name).activeFocus, name);
        keyClick(key);
    }

    function test_isSteeredByKeyboard() {
        open();
        verify(part("heading").text.startsWith("Odsłuch na Macu · Dwa"));
        for (const name of ["previousButton", "playButton", "nextButton", "positionSlider", "volumeSlider", "stopButton"]) {
            verify(part(name).Accessible.name !== "", name);
            verify(part(name).focusPolicy & Qt.TabFocus, name);
        }
        verify(!part("previousButton").enabled);
        compare(part("playButton").toolTip, "Pauza");
        press("playButton", Qt.Key_Space);
        compare(root.playback.playing, false);
        compare(part("playButton").toolTip, "Odtwórz");
        press("positionSlider", Qt.Key_Right);
        verify(root.playback.position > 3.5);
        verify(part("previousButton").enabled); // back to the start
        press("previousButton", Qt.Key_Space);
        compare(root.playback.position, 0);
        compare(part("positionSlider").value, 0);
        press("volumeSlider", Qt.Key_Right);
        fuzzyCompare(root.playback.volume, 0.65, 0.001);
        part("positionSlider").forceActiveFocus(Qt.TabFocusReason);
        root.playback.next();
        compare(root.playback.playing, false); // the file is being opened
        verify(part("positionSlider").activeFocus);
        compare(root.playback.durationText, "0:04");
        verify(part("heading").text.startsWith("Odsłuch na Macu · Jeden"));
        verify(!part("nextButton").enabled);
        press("stopButton", Qt.Key_Space);
        verify(!root.playback.shown);
        tryVerify(() => !root.player.visible);
    }

    function test_showsWhyATrackIsNotHeard() {
        open();
        verify(!part("playbackError").visible);
        root.bench.loseMusic();
        mouseClick(part("nextButton"));
        tryVerify(() => part("playbackError").visible);
        compare(part("playbackError").text, "Plik nie jest dostępny. Sprawdź połączenie z iPodem.");
    }

    function test_largeTextIsNotCut() {
        open();
        DesktopScheme.textScale = 1.5;
        root.player.width = 516;
        waitForRendering(root.player);
        const heading = part("heading").text; // may end in an ellipsis
        compare(root.bench.clippedTexts(root.player).filter(text => text !== heading), []);
        verify(part("positionSlider").width > 60);
    }
}
