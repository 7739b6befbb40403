// Draws an iPod: its body with screen, wheel and buttons, and the shadow below.
//
// Everything is drawn from proportions and colours; the same values give the same picture. No state; any thread.
#pragma once

#include "ui/device/IPodFinish.h"
#include "ui/device/IPodLayout.h"

#include <QImage>

namespace IPodPainter {

/// Logical pixels around the body that the shadow and the light at its edges take.
inline constexpr int margin = 18;

enum class Screen : std::uint8_t {
    Lit, ///< shows the player's own words
    Blank, ///< shows nothing, since a picture is to lie over it
};

/// The drawing with its margins, in device pixels of which there are `pixelRatio` to a logical one.
[[nodiscard]] QImage draw(
    const IPodProfile &profile, const QString &finish, const IPodLayout &layout, Screen screen, double pixelRatio);

/// What lies over a picture on the screen: the glass, from the screen's edge to its edge.
[[nodiscard]] QImage drawGlass(const IPodProfile &profile, const IPodLayout &layout, double pixelRatio);

/// The colour of what the screen shows of itself.
[[nodiscard]] QColor screenInk(const IPodProfile &profile);

} // namespace IPodPainter
