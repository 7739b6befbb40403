// The picture of a theme wherever one is shown, or words in its place. Four wide to three high unless set otherwise.
import QtQuick
import Marlune

Item {
    id: root

    required property url url
    property color ink: Tokens.color.textMuted
    property real rounding: 5
    property bool silent: false ///< part of a drawing that says for itself what it shows

    /// Small enough for the longest of the words.
    readonly property font lettering: Qt.font({
        family: Tokens.type.caption.family,
        pixelSize: Math.max(1, Math.min(Tokens.type.caption.pixelSize, Math.floor((root.width - 16) / 8)))
    })

    implicitWidth: 240
    implicitHeight: Math.round(root.width * 3 / 4)

    ThemePicture {
        id: picture
        anchors.fill: parent
        url: root.url
        rounding: root.rounding
        ground: Qt.rgba(Tokens.color.text.r, Tokens.color.text.g, Tokens.color.text.b, 0.04)
    }
    Column {
        anchors.centerIn: parent
        width: parent.width - 2 * Tokens.space.hair
        spacing: Tokens.space.tight
        visible: picture.state === ThemePicture.Absent

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: "photo"
            side: Math.round(Math.min(1.3 * Tokens.type.title2.pixelSize, root.height / 4))
            color: root.ink
        }
        TextBlock {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: L10n.text("Brak podglądu")
            font: root.lettering
            color: root.ink
            Accessible.ignored: root.silent
        }
    }
    Row {
        anchors.centerIn: parent
        spacing: Tokens.space.hair
        visible: picture.state === ThemePicture.Unavailable || slow.passed && picture.state === ThemePicture.Reading

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "photo"
            side: Math.round(1.3 * root.lettering.pixelSize)
            color: root.ink
        }
        TextBlock {
            width: Math.min(Math.ceil(words.advanceWidth) + 1,
                root.width - parent.spacing - 2 * Tokens.space.hair - 1.3 * root.lettering.pixelSize)
            wrapMode: Text.WordWrap
            text: words.text
            font: root.lettering
            color: root.ink
            Accessible.ignored: root.silent
        }
    }
    ProgressBar {
        anchors.centerIn: parent
        width: Math.round(parent.width * 0.4)
        visible: picture.state === ThemePicture.Fetching
        indeterminate: true
        Accessible.ignored: root.silent
    }
    TextMetrics { // the wrapped text's own width would depend on the one that it is given
        id: words
        font: root.lettering
        text: L10n.text("Podgląd niedostępny")
    }
    // A picture that is there at once is not announced by words that flash up before it.
    Timer {
        id: slow

        property bool passed: false

        interval: Tokens.motion.hint
        running: picture.state === ThemePicture.Reading
        onRunningChanged: passed = false
        onTriggered: passed = true
    }
}
