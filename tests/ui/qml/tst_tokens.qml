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

    Button {
        id: prominent
        kind: Button.Prominent
        enabled: false
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

    function test_contrast() {
        const shape = 3;
        for (const [look, roles] of [["light", light], ["dark", dark]]) {
            const hold = (ink, ground, cover, least = 4.5, opacity = 1) => {
                const below = cover ? laid(roles[cover], roles[ground], 1) : roles[ground];
                const found = contrast(laid(roles[ink], below, opacity), below);
                verify(found >= least, [look, ink, "on", cover, ground, found.toFixed(2)].join(" "));
            };
            for (const ground of ["window", "content", "sidebar", "card", "raised"]) {
                hold("text", ground);
                hold("textMuted", ground);
                ["hover", "pressed", "field"].forEach(cover => hold("text", ground, cover));
            }
            hold("textMuted", "content", "field");
            ["text", "textMuted", "warning"].forEach(ink => hold(ink, "content", "marked"));
            hold("warning", "card");
            ["note", "caution", "found", "foundNow"].forEach(cover => hold("text", "content", cover));
            ["note", "caution"].forEach(cover => hold("accent", "content", cover));
            ["content", "window", "card"].forEach(ground => hold("accent", ground));
            ["", "hover", "pressed"].forEach(cover => hold("textOnAccent", "accent", cover));
            ["content", "window"].forEach(ground => hold("warning", ground));
            DesktopScheme.dark = look === "dark";
            ["window", "content"].forEach(ground => {
                const below = laid(prominent.background.color, roles[ground], prominent.opacity);
                const found = contrast(laid(prominent.tint, below, prominent.opacity), below);
                verify(found >= 2.3, [look, "disabled on", ground, found.toFixed(2)].join(" "));
            });
            hold("good", "window", "", shape);
            hold("accent", "content", "", shape, 0.7); // the empty state's symbol
        }
        DesktopScheme.dark = false;
    }
}
