#include "ui/device/IPodLayout.h"

#include <algorithm>
#include <cmath>

namespace {

using Shape = IPodProfile::Shape;

/// All in shares of the body's width but `y`, which is one of its height.
struct Place {
    double size = 0;
    double y = 0;
};

std::optional<Place> wheelPlace(const IPodProfile &profile)
{
    switch (profile.shape) {
    case Shape::Early:
        return Place {0.7, 0.72};
    case Shape::Buttons:
    case Shape::Wheel:
    case Shape::Mini:
    case Shape::Nano:
    case Shape::Unknown:
        return Place {0.68, 0.72};
    case Shape::NanoWide:
        return Place {0.54, 0.77};
    case Shape::ShuffleStick:
        return Place {0.82, 0.28};
    case Shape::ShuffleClip:
        return Place {0.82 * std::min(1.0, profile.ratio), 0.5};
    case Shape::Touch:
    case Shape::SquareTouch:
    case Shape::ShuffleRemote:
        break;
    }
    return std::nullopt;
}

QRectF centred(double x, double y, QSizeF size)
{
    return {x - size.width() / 2, y - size.height() / 2, size.width(), size.height()};
}

/// A screen above a wheel keeps its shape.
QRectF aboveWheel(const IPodProfile &profile, QSizeF body, double y)
{
    const bool narrow = profile.shape == Shape::Mini || (profile.shape == Shape::Nano && profile.screenRatio < 1);
    const double width = body.width() * (narrow ? 0.72 : 0.82);
    return centred(body.width() / 2, y * body.height(), {width, width / profile.screenRatio});
}

/// A screen without one keeps its width even where its height is at the limit.
QRectF allOver(const IPodProfile &profile, QSizeF body, double y, double limit)
{
    const double width = 0.86 * body.width();
    const double height = std::min(limit * body.height(), width / profile.screenRatio);
    return centred(body.width() / 2, y * body.height(), {width, height});
}

std::optional<QRectF> screenIn(const IPodProfile &profile, QSizeF body)
{
    switch (profile.shape) {
    case Shape::Early:
    case Shape::Buttons:
    case Shape::Wheel:
    case Shape::Mini:
    case Shape::Nano:
    case Shape::Unknown:
        return aboveWheel(profile, body, 0.25);
    case Shape::NanoWide:
        return aboveWheel(profile, body, 0.29);
    case Shape::Touch:
        return allOver(profile, body, 0.46, 0.73);
    case Shape::SquareTouch:
        return allOver(profile, body, 0.5, 0.85);
    case Shape::ShuffleStick:
    case Shape::ShuffleClip:
    case Shape::ShuffleRemote:
        break;
    }
    return std::nullopt;
}

} // namespace

IPodLayout IPodLayout::of(const IPodProfile &profile, double width, double maxHeight, double pixelRatio)
{
    const auto onPixel = [=](double length) { return std::round(length * pixelRatio) / pixelRatio; };
    const double fitting = std::max(0.0, std::min(maxHeight / profile.ratio, width));
    const QSizeF body(onPixel(fitting), onPixel(fitting * profile.ratio));
    IPodLayout layout {.body = body, .screen = screenIn(profile, body), .wheel = std::nullopt};
    if (layout.screen) {
        const QRectF &exact = *layout.screen;
        layout.screen = QRectF(QPointF(onPixel(exact.left()), onPixel(exact.top())),
            QPointF(onPixel(exact.right()), onPixel(exact.bottom())));
    }
    if (const std::optional<Place> place = wheelPlace(profile)) {
        const double diameter = place->size * body.width();
        layout.wheel = centred(body.width() / 2, place->y * body.height(), {diameter, diameter});
    }
    return layout;
}
