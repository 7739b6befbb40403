#include "platform/Images.h"

#include <QBuffer>
#include <QImageReader>

namespace {

/// Larger ones are no covers; the limit keeps a lying header from costing memory.
constexpr qint64 mostPixels = 200'000'000;

} // namespace

QImage decodeImage(const QByteArray &bytes, int side)
{
    QByteArray shared = bytes;
    QBuffer buffer(&shared);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid()) {
        if (qint64(size.width()) * size.height() > mostPixels) {
            return {};
        }
        if (size.width() > side || size.height() > side) {
            reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
        }
    }
    const QImage image = reader.read();
    return image.width() > side || image.height() > side
        ? image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        : image;
}
