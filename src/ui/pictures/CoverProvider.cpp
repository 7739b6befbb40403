#include "ui/pictures/CoverProvider.h"

#include "media/pictures/Images.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

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
    const double radius = id.section(u'/', 1).toDouble() / 1000 * side;
    return encoded ? CoverProvider::draw(*encoded, side, radius) : QImage();
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
