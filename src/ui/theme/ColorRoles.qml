// The colours by what they are used for, in one of the two looks.
import QtQuick

QtObject {
    property bool dark: false

    // Grounds
    readonly property color window: dark ? "#1C1C1E" : "#F5F5F7"
    readonly property color content: dark ? "#161618" : "#FFFFFF"
    readonly property color sidebar: dark ? "#242427" : "#ECECEF"
    readonly property color card: dark ? "#1F1F22" : "#F7F7F9"
    readonly property color raised: dark ? "#3A3A3E" : "#FFFFFF" ///< chosen segment, menus, tooltips
    readonly property color knob: dark ? "#C9C9CF" : "#FFFFFF" ///< what is dragged
    readonly property color field: dark ? "#12F2F2F4" : "#0D1D1D1F" ///< laid over the ground below

    // What lies on them
    readonly property color text: dark ? "#F2F2F4" : "#1D1D1F"
    readonly property color textMuted: dark ? "#A4A4AD" : "#63636A"
    readonly property color accent: dark ? "#4C9BFF" : "#0A63E0"
    readonly property color textOnAccent: dark ? "#0B1522" : "#FFFFFF"
    readonly property color warning: dark ? "#FFB340" : "#A84B00"
    readonly property color good: dark ? "#4CD07D" : "#16753B"
    readonly property color danger: dark ? "#FF6B60" : "#C4281C"
    readonly property color found: dark ? "#4A3F14" : "#FFF1B8" ///< below words that were searched for
    readonly property color foundNow: dark ? "#7A5C00" : "#FFD54A" ///< and the ones that the reader is at

    // Parts of a disk
    readonly property color partFlac: dark ? "#4C9BFF" : "#0A63E0"
    readonly property color partMp3: dark ? "#B794FF" : "#7A4BC9"
    readonly property color partMusic: dark ? "#35C3B1" : "#0B8577"
    readonly property color partData: dark ? "#7E7E87" : "#8E8E97"
    readonly property color partFree: dark ? "#303034" : "#E4E4E9"

    // Laid over whatever lies below
    readonly property color line: dark ? "#1CFFFFFF" : "#17000000"
    readonly property color hover: dark ? "#12F2F2F4" : "#0D1D1D1F"
    readonly property color pressed: dark ? "#24F2F2F4" : "#1A1D1D1F"
    readonly property color note: dark ? "#1A4C9BFF" : "#0F0A63E0" ///< below a remark
    readonly property color caution: dark ? "#1FFFB340" : "#14A84B00" ///< below a warning
    readonly property color marked: dark ? "#334C9BFF" : "#1F0A63E0" ///< below a selected row
    readonly property color focusRing: dark ? "#734C9BFF" : "#730A63E0"
    readonly property color scrim: dark ? "#80000000" : "#40000000"
    readonly property color darkroom: "#E60B0B0D" ///< around a picture that is looked at alone
    readonly property color textOnDarkroom: "#E4E4E9"
    readonly property real coverShadow: dark ? 0.4 : 0.14
    readonly property real sheetShadow: dark ? 0.6 : 0.26
    readonly property real disabled: 0.4
    readonly property int washLightness: dark ? 13 : 94 ///< per cent; near that of a sheet's ground
}
