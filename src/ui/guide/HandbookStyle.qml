// The looks of the handbook: a style sheet for its plain HTML, made of the tokens. Qt's rich text knows a part of CSS.
import QtQuick
import Marlune

QtObject {
    id: root

    readonly property font body: Tokens.type.of(15, Font.Normal)
    /// Some 70 letters, each about half as wide as high.
    readonly property real line: Math.round(70 * 0.53 * root.body.pixelSize)

    // What is drawn beside the words
    readonly property int groundMargin: 12 ///< between the words of a remark and its ground's edge
    readonly property int inset: 18

    function pixels(size: real): string {
        return Math.round(size * Tokens.type.scale) + "px";
    }

    readonly property string sheet: `
        body, p, li, td { color: ${Tokens.color.text}; }
        p, li { line-height: 140%; }
        td, th { line-height: 125%; }
        p { margin-top: 0px; margin-bottom: ${root.pixels(10)}; }
        ul, ol { margin-top: 0px; margin-bottom: ${root.pixels(10)}; }
        li { margin-bottom: ${root.pixels(4)}; }
        h2 { color: ${Tokens.color.text}; font-size: ${root.pixels(22)}; font-weight: 700;
            margin-top: ${root.pixels(40)}; margin-bottom: ${root.pixels(10)}; }
        h3 { color: ${Tokens.color.text}; font-size: ${root.pixels(16)}; font-weight: 600;
            margin-top: ${root.pixels(22)}; margin-bottom: ${root.pixels(5)}; }
        a { color: ${Tokens.color.accent}; text-decoration: none; }
        code { font-family: monospace; font-size: ${root.pixels(13.5)}; }
        table { margin-top: ${root.pixels(6)}; margin-bottom: ${root.pixels(16)}; }
        th, td { padding: 5px 14px 5px 6px; vertical-align: top; }
        th { color: ${Tokens.color.textMuted}; font-size: ${root.pixels(13)}; font-weight: 600; text-align: left; }
        .marlune { background-color: ${Tokens.color.note}; margin: 26px 18px 30px 18px; }
        .warning { background-color: ${Tokens.color.caution}; margin: 26px 18px 30px 18px; }
    `
}
