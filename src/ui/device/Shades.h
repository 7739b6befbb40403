// Colours by their lightness, for the drawings of this room.
#pragma once

#include <QColor>

namespace Shades {

/// `level` from black at 0 to white at 1.
inline QColor grey(double level, double opacity = 1)
{
    const auto channel = float(level);
    return QColor::fromRgbF(channel, channel, channel, float(opacity));
}

inline QColor black(double opacity)
{
    return grey(0, opacity);
}

inline QColor white(double opacity)
{
    return grey(1, opacity);
}

inline QColor faded(QColor colour, double opacity)
{
    colour.setAlphaF(float(opacity));
    return colour;
}

inline const QColor red {0xFF, 0x3B, 0x30};
inline const QColor green {0x34, 0xC7, 0x59};
inline const QColor middleGrey {0x8E, 0x8E, 0x93};

} // namespace Shades
