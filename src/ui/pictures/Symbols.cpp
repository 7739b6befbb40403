#include "ui/pictures/Symbols.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <array>

namespace Symbols {

namespace {

struct Entry {
    const char *name;
    const char *file; ///< below the icon set's folder, without ".svg"
};

constexpr std::array table {
    Entry {"archivebox", "regular/archive"},
    Entry {"arrow.clockwise", "regular/arrow-clockwise"},
    Entry {"arrow.down.to.line", "regular/arrow-line-down"},
    Entry {"arrow.down.right.and.arrow.up.left", "regular/arrows-in-simple"},
    Entry {"arrow.up.left.and.arrow.down.right", "regular/arrows-out-simple"},
    Entry {"backward.end.fill", "fill/skip-back-fill"},
    Entry {"book.closed", "regular/book"},
    Entry {"checkmark", "regular/check"},
    Entry {"checkmark.circle", "regular/check-circle"},
    Entry {"checkmark.circle.fill", "fill/check-circle-fill"},
    Entry {"checkmark.shield", "regular/shield-check"},
    Entry {"chevron.down", "regular/caret-down"},
    Entry {"chevron.left", "regular/caret-left"},
    Entry {"chevron.right", "regular/caret-right"},
    Entry {"chevron.up", "regular/caret-up"},
    Entry {"chevron.up.chevron.down", "regular/caret-up-down"},
    Entry {"circle.fill", "fill/circle-fill"},
    Entry {"clock.arrow.circlepath", "regular/clock-counter-clockwise"},
    Entry {"doc.badge.ellipsis", "regular/file-x"},
    Entry {"doc.on.doc", "regular/copy"},
    Entry {"eject.fill", "fill/eject-fill"},
    Entry {"folder", "regular/folder"},
    Entry {"forward.end.fill", "fill/skip-forward-fill"},
    Entry {"info.circle", "regular/info"},
    Entry {"internaldrive", "regular/hard-drive"},
    Entry {"ipod", "regular/device-mobile-speaker"},
    Entry {"magnifyingglass", "regular/magnifying-glass"},
    Entry {"music.note", "regular/music-note"},
    Entry {"music.note.list", "regular/playlist"},
    Entry {"opticaldisc", "regular/vinyl-record"},
    Entry {"paintbrush", "regular/paint-brush"},
    Entry {"paintbrush.pointed", "regular/paint-brush-broad"},
    Entry {"paintpalette", "regular/palette"},
    Entry {"pause.fill", "fill/pause-fill"},
    Entry {"photo", "regular/image"},
    Entry {"photo.badge.exclamationmark", "regular/image-broken"},
    Entry {"play.fill", "fill/play-fill"},
    Entry {"plus", "regular/plus"},
    Entry {"plus.circle", "regular/plus-circle"},
    Entry {"questionmark", "bold/question-mark-bold"},
    Entry {"rectangle.stack", "regular/cards-three"},
    Entry {"shuffle", "bold/shuffle-bold"},
    Entry {"sparkles", "regular/sparkle"},
    Entry {"speaker.wave.2", "regular/speaker-high"},
    Entry {"square.grid.2x2", "regular/squares-four"},
    Entry {"square.stack", "regular/stack"},
    Entry {"tag", "regular/tag"},
    Entry {"xmark", "regular/x"},
    Entry {"xmark.circle.fill", "fill/x-circle-fill"},
};

} // namespace

QStringList names()
{
    QStringList result;
    std::transform(table.begin(), table.end(), std::back_inserter(result),
        [](const Entry &entry) { return QString::fromLatin1(entry.name); });
    return result;
}

QString file(const QString &name)
{
    const auto *const found = std::find_if(
        table.begin(), table.end(), [&](const Entry &entry) { return name == QLatin1String(entry.name); });
    return found != table.end() ? QStringLiteral(":/symbols/") + QLatin1String(found->file) + QStringLiteral(".svg")
                                : QString();
}

QImage draw(const QString &name, const QColor &colour, int side)
{
    if (file(name).isEmpty()) {
        return {};
    }
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter, name, colour, QRectF(0, 0, side, side));
    painter.end();
    return image;
}

void paint(QPainter &painter, const QString &name, const QColor &colour, const QRectF &rect)
{
    QFile source(file(name));
    if (!source.open(QIODevice::ReadOnly)) {
        return;
    }
    QSvgRenderer renderer(source.readAll().replace("currentColor", colour.name().toLatin1()));
    const double before = painter.opacity();
    painter.setOpacity(before * colour.alphaF());
    renderer.render(&painter, rect);
    painter.setOpacity(before);
}

Provider::Provider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage Provider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    constexpr int defaultSide = 16;
    constexpr int maxSide = 1024;
    const int wanted = std::max(requestedSize.width(), requestedSize.height());
    const int side = std::min(wanted > 0 ? wanted : defaultSide, maxSide);
    const QImage image = draw(id.section(u'/', 0, 0), QColor(u'#' + id.section(u'/', 1, 1)), side);
    if (size) {
        *size = image.size();
    }
    return image;
}

} // namespace Symbols
