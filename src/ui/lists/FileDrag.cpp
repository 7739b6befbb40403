#include "ui/lists/FileDrag.h"

#include "ui/LocalPath.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include <QDrag>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace FileDrag {

namespace {

constexpr qsizetype idSize = 16; // bytes, RFC 4122

QString deviceTrackFormat()
{
    return QStringLiteral("application/x-marlune-device-tracks");
}

QString uriListFormat()
{
    return QStringLiteral("text/uri-list");
}

class DraggedFiles final : public QMimeData {
public:
    explicit DraggedFiles(Load files)
        : m_files(std::move(files))
    {
    }

    [[nodiscard]] QStringList formats() const override
    {
        return {uriListFormat(), m_files.onDevice ? deviceTrackFormat() : trackFormat()};
    }
    [[nodiscard]] bool hasFormat(const QString &format) const override { return formats().contains(format); }

protected:
    [[nodiscard]] QVariant retrieveData(const QString &format, QMetaType type) const override
    {
        if (format == uriListFormat()) {
            return type.id() == QMetaType::QByteArray ? QVariant(uriList()) : QVariant(urls());
        }
        return hasFormat(format) ? QVariant(ids()) : QVariant();
    }

private:
    [[nodiscard]] QVariantList urls() const
    {
        QVariantList result;
        for (const std::filesystem::path &path : m_files.paths) {
            result.append(fileUrl(path));
        }
        return result;
    }
    /// RFC 2483, section 5: a line for each address.
    [[nodiscard]] QByteArray uriList() const
    {
        QByteArray result;
        for (const std::filesystem::path &path : m_files.paths) {
            result += fileUrl(path).toEncoded() + "\r\n";
        }
        return result;
    }
    [[nodiscard]] QByteArray ids() const
    {
        QByteArray result;
        for (const QUuid &track : m_files.tracks) {
            result += track.toRfc4122();
        }
        return result;
    }

    Load m_files;
};

/// A card with the title, or with the number of files.
QPixmap picture(const Load &files)
{
    const QFontMetrics metrics(files.font);
    const int around = metrics.height() * 2 / 3;
    const int widest = metrics.height() * 16;
    const QString text = files.paths.size() == 1
        ? Wording::shownName(files.title)
        : AppLocalizer::text(QStringLiteral("Utwory: ") + QString::number(files.paths.size()));
    const QString shown = metrics.elidedText(text, Qt::ElideRight, widest - 2 * around);
    const QSize size(metrics.horizontalAdvance(shown) + 2 * around, metrics.height() * 2);
    const double ratio = qGuiApp->devicePixelRatio();
    QPixmap result(size * ratio);
    result.setDevicePixelRatio(ratio);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(files.ground);
    painter.drawRoundedRect(QRect(QPoint(), size), around, around);
    painter.setPen(files.ink);
    painter.setFont(files.font);
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, shown);
    return result;
}

} // namespace

std::unique_ptr<QMimeData> mimeData(Load files)
{
    return std::make_unique<DraggedFiles>(std::move(files));
}

void run(QObject &source, Load files)
{
    if (files.paths.empty()) {
        return;
    }
    auto *drag = new QDrag(&source); // Qt deletes it once it is let go
    const QPixmap shown = picture(files);
    drag->setPixmap(shown);
    drag->setHotSpot({-8, -8});
    drag->setMimeData(mimeData(std::move(files)).release());
    drag->exec(Qt::CopyAction, Qt::CopyAction);
}

bool isOwn(const QStringList &formats)
{
    return formats.contains(trackFormat()) || isFromDevice(formats);
}

bool isFromDevice(const QStringList &formats)
{
    return formats.contains(deviceTrackFormat());
}

QString trackFormat()
{
    return QStringLiteral("application/x-marlune-tracks");
}

QSet<QUuid> tracks(const QByteArray &bytes)
{
    QSet<QUuid> result;
    result.reserve(bytes.size() / idSize);
    for (qsizetype at = 0; idSize <= bytes.size() - at; at += idSize) {
        result.insert(QUuid::fromRfc4122(bytes.sliced(at, idSize)));
    }
    return result;
}

} // namespace FileDrag
