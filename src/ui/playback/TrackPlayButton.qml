// Plays a track, or pauses it while it is the one that is heard. Asks for it; the page knows the track's list.
import QtQuick
import Marlune

Button {
    id: root

    required property bool playing ///< the track is heard

    kind: Button.Borderless
    measure: Button.Small
    symbol: root.playing ? "pause.fill" : "play.fill"
    onPlayingChanged: Hints.hide(root) // it said what has been done
    toolTip: L10n.text(root.playing ? "Pauza" : "Odtwórz")
}
