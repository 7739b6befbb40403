#include "ui/flow/FlowCard.h"

#include "ui/flow/FlowGeometry.h"
#include "ui/pictures/Symbols.h"

#include <QPainter>

#include <cmath>
#include <cstring>

namespace {

constexpr double reflectionOpacity = 0.26; // where it begins
constexpr double reflectionEnd = 0.5; // of the side: where nothing of it is left
constexpr double shadowOpacity = 0.65;
constexpr double shadowDrop = 10.0 / 320; // of the side: ten points of a usual cover
constexpr double shadowBlur = 10.0 / 320;

/// How much of the reflection is seen at this distance below the picture, in sides.
double reflectionAt(double below)
{
    return reflectionOpacity * std::max(0.0, 1 - below / reflectionEnd);
}

/// How dark the picture's shadow is there.
double shadowAt(double below)
{
    return shadowOpacity * 0.5 * std::erfc((below - shadowDrop) / shadowBlur);
}

} // namespace

QImage FlowCard::draw(const QImage &picture)
{
    if (picture.isNull()) {
        return {};
    }
    const int side = picture.width();
    const int below = int(std::lround(side * (FlowGeometry::cardHeight - 1)));
    const QImage cover = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage card(side + 2 * margin, side + below + 2 * margin, QImage::Format_ARGB32_Premultiplied);
    card.fill(Qt::transparent);
    for (int y = 0; y < side; ++y) {
        std::memcpy(reinterpret_cast<QRgb *>(card.scanLine(margin + y)) + margin, cover.constScanLine(y),
            std::size_t(side) * sizeof(QRgb));
    }
    for (int y = 0; y < below; ++y) {
        const double distance = (y + 0.5) / side;
        const double reflected = reflectionAt(distance);
        const double shadow = shadowAt(distance) * (1 - reflected);
        const auto *from = reinterpret_cast<const QRgb *>(cover.constScanLine(side - 1 - y));
        auto *to = reinterpret_cast<QRgb *>(card.scanLine(margin + side + y)) + margin;
        for (int x = 0; x < side; ++x) {
            const auto part = [&](int value) { return int(std::lround(value * reflected)); };
            to[x] = qRgba(part(qRed(from[x])), part(qGreen(from[x])), part(qBlue(from[x])),
                std::min(255, part(qAlpha(from[x])) + int(std::lround(255 * shadow))));
        }
    }
    return card;
}

QImage FlowCard::standIn(int side, bool awaited)
{
    constexpr QRgb ground = 0xFF2A2A2E;
    constexpr QRgb ink = 0xFF7E7E87;
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(ground);
    if (!awaited) {
        QPainter painter(&picture);
        Symbols::paint(painter, QStringLiteral("opticaldisc"), QColor(ink),
            QRectF(side * 3 / 8.0, side * 3 / 8.0, side / 4.0, side / 4.0));
    }
    return picture;
}
