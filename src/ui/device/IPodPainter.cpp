#include "ui/device/IPodPainter.h"

#include "ui/device/IPodParts.h"
#include "ui/device/Shades.h"
#include "ui/pictures/ContinuousCorners.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using Shape = IPodProfile::Shape;
using Shades::black;
using Shades::white;

constexpr double cornerShare = 0.055; ///< of the body's width

QPainterPath outline(QSizeF body, double inset)
{
    const QRectF rect(QPointF(inset, inset), body - QSizeF(2 * inset, 2 * inset));
    return continuousCorners(rect, std::max(0.0, cornerShare * body.width() - inset));
}

QImage canvas(QSizeF logicalSize, double pixelRatio)
{
    QImage image((logicalSize * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// Distance from the point to the edge of a rounded rectangle around the origin; negative inside.
double distanceToEdge(QPointF point, QSizeF half, double radius)
{
    const double dx = std::abs(point.x()) - half.width() + radius;
    const double dy = std::abs(point.y()) - half.height() + radius;
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) - radius;
}

void drawShadow(QImage &image, QSizeF body, double pixelRatio)
{
    constexpr double opacity = 0.22;
    constexpr double radius = 7;
    constexpr double drop = 5;
    const double deviation = radius / 2;
    const QPointF centre(IPodPainter::margin + body.width() / 2, IPodPainter::margin + body.height() / 2 + drop);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QPointF point = QPointF(x + 0.5, y + 0.5) / pixelRatio - centre;
            const double distance = distanceToEdge(point, body / 2, cornerShare * body.width());
            if (distance > -2 * radius && distance < 2 * radius) { // further in the body hides it
                // A blurred edge is close to the error function.
                const double shade = 0.5 * opacity * std::erfc(distance / (deviation * std::sqrt(2.0)));
                line[x] = qRgba(0, 0, 0, int(std::lround(255 * shade)));
            }
        }
    }
}

QColor overWhite(const QColor &colour, double opacity)
{
    const auto mixed = [&](float channel) { return channel * float(opacity) + 1 - float(opacity); };
    return QColor::fromRgbF(mixed(colour.redF()), mixed(colour.greenF()), mixed(colour.blueF()));
}

/// Whether the sides of the body bend away from the eye, as those of an extruded tube.
bool isTube(const IPodProfile &profile)
{
    return profile.shape == Shape::Mini || profile.id == QLatin1String("nano4") || profile.id == QLatin1String("nano5");
}

/// What light makes of the body's material.
QLinearGradient sheen(const IPodProfile &profile, const IPodFinish &finish, QSizeF body)
{
    if (isTube(profile)) {
        QLinearGradient across(0, 0, body.width(), 0);
        across.setStops({{0, black(0.24)}, {0.03, black(0.1)}, {0.08, white(0.1)}, {0.17, white(0.28)},
            {0.27, white(0.16)}, {0.42, white(0.03)}, {0.6, black(0.03)}, {0.86, black(0.12)}, {0.93, black(0.05)},
            {0.965, black(0.07)}, {1, black(0.26)}});
        return across;
    }
    QLinearGradient down(0, 0, 0, body.height());
    if (finish.polished) {
        down.setStops({{0, white(0.12)}, {0.3, white(0.03)}, {0.5, black(0)}, {1, black(0.045)}});
    } else {
        down.setStops({{0, white(0.2)}, {0.22, white(0.06)}, {0.55, black(0)}, {1, black(0.09)}});
    }
    return down;
}

/// The fine roughness of blasted metal.
QBrush grain(double pixelRatio)
{
    static const QImage tile = [] {
        constexpr int side = 128;
        constexpr unsigned strongest = 5; // of 255
        QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
        std::minstd_rand random; // the same grain at each start
        for (int place = 0; place < side * side; ++place) {
            const auto value = int(random() % (2 * strongest + 1)) - int(strongest);
            const int light = value > 0 ? value : 0;
            image.setPixel(place % side, place / side, qRgba(light, light, light, std::abs(value)));
        }
        return image;
    }();
    QBrush brush(tile);
    brush.setTransform(QTransform::fromScale(1 / pixelRatio, 1 / pixelRatio));
    return brush;
}

/// The light on the body's edge at a share of its height: the opacity of white there, below 0 that of black.
double lightOnEdge(double share, bool isDark)
{
    constexpr double brightUpTo = 0.2; // of the height
    constexpr double darkFrom = 0.8;
    if (share < brightUpTo) {
        return (isDark ? 0.32 : 0.6) * (1 - 0.65 * share / brightUpTo);
    }
    if (share > darkFrom) {
        const double depth = (share - darkFrom) / (1 - darkFrom);
        return isDark ? -0.1 - 0.4 * depth * depth : -0.07 - 0.13 * depth * depth;
    }
    const double down = (share - brightUpTo) / (darkFrom - brightUpTo);
    return isDark ? 0.112 - 0.212 * down : 0.21 - 0.28 * down;
}

/// What light makes of the body's edge, as a layer as large as the body. Reckoned by the pixel: gradients laid over
/// each other would show their steps.
QImage roundedEdge(QSizeF body, bool isDark, double pixelRatio)
{
    constexpr double dither[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    const double width = std::max(2.0, 0.03 * body.width());
    QImage layer = canvas(body, pixelRatio);
    for (int y = 0; y < layer.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(layer.scanLine(y));
        const double light = lightOnEdge((y + 0.5) / layer.height(), isDark);
        for (int x = 0; x < layer.width(); ++x) {
            const QPointF point = QPointF(x + 0.5, y + 0.5) / pixelRatio - QPointF(body.width(), body.height()) / 2;
            const double depth = -distanceToEdge(point, body / 2, cornerShare * body.width());
            if (depth > 0 && depth < width) {
                const double near = 1 - depth / width;
                const int alpha = int(255 * std::abs(light) * near * near + (dither[y % 4][x % 4] + 0.5) / 16);
                line[x] = light > 0 ? qRgba(alpha, alpha, alpha, alpha) : qRgba(0, 0, 0, alpha);
            }
        }
    }
    return layer;
}

void drawBody(QPainter &painter, const IPodProfile &profile, const IPodFinish &finish, QSizeF body, double pixelRatio)
{
    const bool isDark = finish.body.lightnessF() < 0.5F;
    // The rim behind the front, seen as a fine line around it.
    const QRectF bounds(QPointF(), body);
    QLinearGradient rim(bounds.topLeft(), bounds.bottomLeft());
    rim.setStops({{0, black(0.14)}, {0.5, black(0.2)}, {1, black(0.34)}});
    painter.fillPath(outline(body, -0.6), rim);

    QLinearGradient front(bounds.topLeft(), bounds.bottomRight());
    front.setColorAt(0, finish.body);
    front.setColorAt(0.5, overWhite(finish.body, 0.85)); // solid on any page: what shines through is white
    front.setColorAt(1, finish.body);
    painter.fillPath(outline(body, 0), front);
    painter.fillPath(outline(body, 0), sheen(profile, finish, body));

    if (!finish.polished) {
        painter.fillPath(outline(body, 0), grain(pixelRatio));
    }

    painter.drawImage(bounds, roundedEdge(body, isDark, pixelRatio));
    constexpr double line = 1;
    painter.strokePath(outline(body, line / 2), QPen(white(0.65), line));
}

} // namespace

QColor IPodPainter::screenInk(const IPodProfile &profile)
{
    return IPodParts::screenInk(profile);
}

QImage IPodPainter::draw(
    const IPodProfile &profile, const QString &finish, const IPodLayout &layout, Screen screen, double pixelRatio)
{
    QImage image = canvas(layout.body + QSizeF(2 * margin, 2 * margin), pixelRatio);
    if (image.isNull() || layout.body.isEmpty()) {
        return {};
    }
    drawShadow(image, layout.body, pixelRatio);
    const IPodFinish colours = IPodFinish::named(finish);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixelRatio, pixelRatio);
    painter.translate(margin, margin);
    drawBody(painter, profile, colours, layout.body, pixelRatio);
    if (layout.screen) {
        IPodParts::drawScreen(painter, profile, colours, *layout.screen);
        if (screen == Screen::Lit) {
            IPodParts::drawScreenWords(painter, profile, layout);
            IPodParts::drawGlass(painter, profile, *layout.screen);
        }
    }
    if (layout.wheel) {
        const bool isStick = profile.shape == Shape::ShuffleStick;
        IPodParts::drawWheel(painter, colours, *layout.wheel, isStick ? QStringLiteral("+") : QStringLiteral("MENU"));
    }
    IPodParts::drawExtras(painter, profile, colours, layout.body);
    return image;
}

QImage IPodPainter::drawGlass(const IPodProfile &profile, const IPodLayout &layout, double pixelRatio)
{
    if (!layout.screen) {
        return {};
    }
    QImage image = canvas(layout.screen->size(), pixelRatio);
    if (!image.isNull()) {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(pixelRatio, pixelRatio);
        IPodParts::drawGlass(painter, profile, QRectF(QPointF(), layout.screen->size()));
    }
    return image;
}
