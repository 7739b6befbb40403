// Every pair of colours that lie on each other keeps its contrast (WCAG 2.1, relative luminance), in both looks.
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
        const shape = 3;
        const pairs = [];
        for (const [look, roles] of [["light", light], ["dark", dark]]) {
            const add = (ink, ground, cover, least = 4.5, opacity = 1) => {
                const b = cover ? laid(roles[cover], roles[ground], 1) : roles[ground];
                const tag = [look, ink, "on", cover, ground].join(" ");
                pairs.push({ tag: tag, a: laid(roles[ink], b, opacity), b: b, least: least });
            };
            for (const ground of ["window", "content", "sidebar", "card", "raised"]) {
                add("text", ground);
                add("textMuted", ground);
                ["hover", "pressed", "field"].forEach(cover => add("text", ground, cover));
            }
            add("textMuted", "content", "field");
            ["content", "window", "card"].forEach(ground => add("accent", ground));
            ["", "hover", "pressed"].forEach(cover => add("textOnAccent", "accent", cover));
            ["content", "window"].forEach(ground => add("warning", ground));
            add("good", "window", "", shape);
            add("accent", "content", "", shape, 0.7); // the empty state's symbol
        }
        return pairs;
    }
    function test_contrast(data) {
        const found = contrast(data.a, data.b);
        verify(found >= data.least, found.toFixed(2) + " is less than " + data.least);
    }

    function test_contrastOfBlackOnWhiteIs21() {
        fuzzyCompare(contrast(Qt.color("black"), Qt.color("white")), 21, 0.01);
    }
}
