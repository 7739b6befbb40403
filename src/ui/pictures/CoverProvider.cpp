#include "ui/pictures/CoverProvider.h"

#include "media/pictures/Images.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr qsizetype keptCovers = 64'000'000; // bytes
constexpr int maxSide = 2048;
constexpr int defaultSide = 256;

QImage drawStored(const CoverStore &store, const QString &id, const QSize &requested)
{
    const int wanted = std::max(requested.width(), requested.height());
    const int side = std::clamp(wanted > 0 ? wanted : defaultSide, 1, maxSide);
    const std::optional<QByteArray> encoded = store.find(id.section(u'/', 0, 0));
    if (id.section(u'/', 1) == QStringLiteral("whole")) {
        return encoded ? decodeImage(*encoded, side) : QImage();
    }
    if (id.section(u'/', 1, 1) == QStringLiteral("wash")) {
        const double lightness = std::clamp(id.section(u'/', 2, 2).toDouble() / 100, 0.0, 1.0);
        const QSize size = requested.boundedTo({maxSide, maxSide});
        return encoded ? CoverProvider::wash(*encoded, size, lightness, id.section(u'/', 3).toDouble()) : QImage();
    }
    const double radius = id.section(u'/', 1).toDouble() / 1000 * side;
    return encoded ? CoverProvider::draw(*encoded, side, radius) : QImage();
}

/// From 1 at the start of a line to 0 at its end, without a visible edge.
double fade(double place)
{
    const double wave = std::cos(place * std::numbers::pi / 2);
    return wave * wave;
}

/// The colours of a picture's parts, all of one lightness.
QImage patches(const QImage &picture, double lightness)
{
    constexpr int count = 4; // a side; fewer would lose a cover's second colour
    constexpr float strongest = 0.6F;
    QImage colours = picture.scaled(count, count, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                         .convertToFormat(QImage::Format_RGB32);
    for (int place = 0; place < count * count; ++place) {
        const QPoint patch(place % count, place / count);
        const QColor colour = colours.pixelColor(patch).toHsl();
        colours.setPixelColor(patch,
            QColor::fromHslF(
                std::max(0.F, colour.hslHueF()), std::min(strongest, colour.hslSaturationF()), float(lightness)));
    }
    return colours;
}

} // namespace

CoverProvider::CoverProvider(std::shared_ptr<const CoverStore> store)
    : DrawingProvider([store = std::move(store)](
                          const QString &id, const QSize &requested) { return drawStored(*store, id, requested); },
          keptCovers)
{
}

QImage CoverProvider::draw(const QByteArray &encoded, int side, double radius)
{
    QImage picture = decodeImage(encoded, side);
    if (picture.isNull()) {
        return {};
    }
    const int shorter = std::max(1, std::min(picture.width(), picture.height()));
    const int longer = std::max(picture.width(), picture.height());
    if (longer > shorter && longer >= side) {
        // The shorter edge has to fill the square; a strip longer than four squares is not worth its pixels.
        picture = decodeImage(encoded, int(std::min<qint64>(qint64(side) * longer / shorter, qint64(side) * 4)));
    }
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    const QSize filled = picture.size().scaled(side, side, Qt::KeepAspectRatioByExpanding);
    QPainter painter(&square);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(0, 0, side, side), radius, radius);
    painter.setClipPath(shape);
    painter.drawImage(QRect(QPoint((side - filled.width()) / 2, (side - filled.height()) / 2), filled), picture);
    painter.end();
    return square;
}

QImage CoverProvider::wash(const QByteArray &encoded, QSize size, double lightness, double corner)
{
    const QImage picture = decodeImage(encoded, 64);
    if (picture.isNull() || size.isEmpty()) {
        return {};
    }
    const QImage colours = patches(picture, lightness).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage light(size, QImage::Format_ARGB32_Premultiplied);
    // The light is some twenty steps of a screen's colours away from the ground: grain of one step hides their bands.
    constexpr double grainSize = 12;
    std::minstd_rand random;
    for (int y = 0; y < size.height(); ++y) {
        const auto *from = reinterpret_cast<const QRgb *>(colours.constScanLine(y));
        auto *line = reinterpret_cast<QRgb *>(light.scanLine(y));
        const double strength = 255 * fade(double(y) / size.height());
        for (int x = 0; x < size.width(); ++x) {
            const double grain = grainSize * (double(random()) / std::minstd_rand::max() - 0.5);
            const double alpha = strength * fade(double(x) / size.width());
            const int grained = std::clamp(int(alpha + std::min(1.0, alpha) * grain), 0, 255);
            line[x] = qPremultiply(qRgba(qRed(from[x]), qGreen(from[x]), qBlue(from[x]), grained));
        }
    }
    QImage shape(size, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::transparent);
    QPainter painter(&shape);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(light);
    painter.drawRoundedRect(QRectF(QPointF(), size), corner, corner);
    painter.end();
    return shape;
}
