// Every pair of colours that stand on each other keeps its contrast (WCAG 2.1, relative luminance), in both looks.
import QtQuick
import QtTest
import Marlune

TestCase {
    id: root
    name: "Tokens"

    ColorRoles {
        id: light
    }
    ColorRoles {
        id: dark
        dark: true
    }

    function channel(value) {
        return value <= 0.04045 ? value / 12.92 : Math.pow((value + 0.055) / 1.055, 2.4);
    }
    function luminance(color) {
        return 0.2126 * channel(color.r) + 0.7152 * channel(color.g) + 0.0722 * channel(color.b);
    }
    function laid(top, bottom, opacity) {
        const a = top.a * opacity;
        return Qt.rgba(top.r * a + bottom.r * (1 - a), top.g * a + bottom.g * (1 - a), top.b * a + bottom.b * (1 - a), 1);
    }
    function contrast(a, b) {
        const [high, low] = [luminance(a), luminance(b)].sort((x, y) => y - x);
        return (high + 0.05) / (low + 0.05);
    }

    function test_contrast_data() {
        const text = 4.5;
        const shape = 3;
        const pairs = [];
        for (const [look, roles] of [["light", light], ["dark", dark]]) {
            const grounds = ["window", "content", "sidebar", "card", "raised"];
            for (const ground of grounds) {
                pairs.push([look, "text", ground, roles.text, roles[ground], text]);
                pairs.push([look, "textMuted", ground, roles.textMuted, roles[ground], text]);
                for (const cover of ["hover", "pressed", "field"]) {
                    pairs.push([look, "text", cover + " on " + ground, roles.text, laid(roles[cover], roles[ground], 1), text]);
                }
            }
            pairs.push([look, "textMuted", "field", roles.textMuted, laid(roles.field, roles.content, 1), text]);
            pairs.push([look, "accent", "content", roles.accent, roles.content, text]);
            pairs.push([look, "accent", "window", roles.accent, roles.window, text]);
            pairs.push([look, "accent", "card", roles.accent, roles.card, text]);
            pairs.push([look, "textOnAccent", "accent", roles.textOnAccent, roles.accent, text]);
            pairs.push([look, "textOnAccent", "hover on accent", roles.textOnAccent, laid(roles.hover, roles.accent, 1), text]);
            pairs.push([look, "textOnAccent", "pressed on accent", roles.textOnAccent, laid(roles.pressed, roles.accent, 1), text]);
            pairs.push([look, "warning", "content", roles.warning, roles.content, text]);
            pairs.push([look, "warning", "window", roles.warning, roles.window, text]);
            pairs.push([look, "good", "window", roles.good, roles.window, shape]);
            pairs.push([look, "empty state's symbol", "content", laid(roles.accent, roles.content, 0.7), roles.content, shape]);
            pairs.push([look, "stand-in's symbol", "card", roles.textMuted, roles.card, shape]);
        }
        return pairs.map(([look, ink, ground, a, b, least]) => ({ tag: look + ": " + ink + " on " + ground, a: a, b: b, least: least }));
    }
    function test_contrast(data) {
        const found = contrast(data.a, data.b);
        verify(found >= data.least, found.toFixed(2) + " is less than " + data.least);
    }

    function test_contrastOfBlackOnWhiteIs21() {
        fuzzyCompare(contrast(Qt.color("black"), Qt.color("white")), 21, 0.01);
    }

    function test_typeFollowsTheDesktopsTextSize() {
        const before = Tokens.type.body.pixelSize;
        compare(before, 14);
        DesktopScheme.textScale = 1.5;
        compare(Tokens.type.body.pixelSize, 21);
        compare(Tokens.height.regular, 45);
        DesktopScheme.textScale = 1;
        compare(Tokens.type.body.pixelSize, before);
    }

    function test_reducedMotionIsNone() {
        verify(Tokens.motion.appear > 0);
        DesktopScheme.reducedMotion = true;
        compare(Tokens.motion.appear + Tokens.motion.state, 0);
        DesktopScheme.reducedMotion = false;
    }
}
