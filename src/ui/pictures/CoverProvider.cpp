#include "ui/pictures/CoverProvider.h"

#include "media/pictures/Images.h"
#include "platform/tasks/Background.h"

#include <QPainter>
#include <QPainterPath>
#include <QRunnable>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace {

constexpr qsizetype cacheBytes = 64'000'000;
constexpr int decodingThreads = 2;
constexpr int maxSide = 2048;
constexpr int defaultSide = 256;

} // namespace

/// What outlives a single request and is shared by the decoding threads.
struct CoverProvider::Decoder {
    explicit Decoder(std::shared_ptr<const CoverStore> covers)
        : store(std::move(covers))
    {
    }

    QImage image(const QString &id, int side);

    const std::shared_ptr<const CoverStore> store;
    std::mutex mutex;
    QCache<QString, QImage> cache {cacheBytes};
};

QImage CoverProvider::Decoder::image(const QString &id, int side)
{
    const QString key = id + u'/' + QString::number(side);
    {
        const std::lock_guard lock(mutex);
        if (const QImage *kept = cache.object(key)) {
            return *kept;
        }
    }
    const double radius = id.section(u'/', 1).toDouble() / 1000 * side;
    const std::optional<QByteArray> encoded = store->find(id.section(u'/', 0, 0));
    QImage image = encoded ? CoverProvider::draw(*encoded, side, radius) : QImage();
    if (image.isNull()) {
        image = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
    }
    const std::lock_guard lock(mutex);
    cache.insert(key, new QImage(image), image.sizeInBytes());
    return image;
}

namespace {

class CoverResponse : public QQuickImageResponse {
public:
    [[nodiscard]] QQuickTextureFactory *textureFactory() const override
    {
        return QQuickTextureFactory::textureFactoryForImage(image);
    }
    void cancel() override { cancelled = true; }

    QImage image; ///< written before finished(), read after it
    std::atomic<bool> cancelled = false;
};

} // namespace

CoverProvider::CoverProvider(std::shared_ptr<const CoverStore> store)
    : m_decoder(std::make_shared<Decoder>(std::move(store)))
{
    m_pool.setMaxThreadCount(decodingThreads);
    m_pool.setThreadPriority(QThread::LowPriority);
}

CoverProvider::~CoverProvider()
{
    m_pool.waitForDone(); // requests refer to responses that the engine deletes
}

QQuickImageResponse *CoverProvider::requestImageResponse(const QString &id, const QSize &requestedSize)
{
    auto *response = new CoverResponse;
    const int wanted = std::max(requestedSize.width(), requestedSize.height());
    const int side = std::clamp(wanted > 0 ? wanted : defaultSide, 1, maxSide);
    BackgroundJobs::startOn(m_pool, [response, id, side, decoder = m_decoder] {
        if (!response->cancelled) {
            response->image = decoder->image(id, side);
        }
        // Queued, since nobody listens before this request has returned.
        QMetaObject::invokeMethod(response, "finished", Qt::QueuedConnection);
    });
    return response;
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
