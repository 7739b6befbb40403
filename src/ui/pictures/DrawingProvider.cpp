#include "ui/pictures/DrawingProvider.h"

#include "platform/tasks/Background.h"

#include <QCache>

#include <atomic>
#include <mutex>

namespace {

constexpr int drawingThreads = 2;

class DrawingResponse : public QQuickImageResponse {
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

/// What outlives a single request and is shared by the drawing threads.
struct DrawingProvider::Easel {
    Easel(Draw function, qsizetype cacheBytes)
        : draw(std::move(function))
        , cache(cacheBytes)
    {
    }

    QImage image(const QString &id, const QSize &requested);

    const Draw draw;
    std::mutex mutex;
    QCache<QString, QImage> cache;
};

QImage DrawingProvider::Easel::image(const QString &id, const QSize &requested)
{
    const QString key = id + u' ' + QString::number(requested.width()) + u'x' + QString::number(requested.height());
    {
        const std::lock_guard lock(mutex);
        if (const QImage *kept = cache.object(key)) {
            return *kept;
        }
    }
    QImage image = draw(id, requested);
    if (image.isNull()) {
        image = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
    }
    const std::lock_guard lock(mutex);
    cache.insert(key, new QImage(image), image.sizeInBytes());
    return image;
}

DrawingProvider::DrawingProvider(Draw draw, qsizetype cacheBytes)
    : m_easel(std::make_shared<Easel>(std::move(draw), cacheBytes))
{
    m_pool.setMaxThreadCount(drawingThreads);
    m_pool.setThreadPriority(QThread::LowPriority);
}

DrawingProvider::~DrawingProvider()
{
    m_pool.waitForDone(); // requests refer to responses that the engine deletes
}

QQuickImageResponse *DrawingProvider::requestImageResponse(const QString &id, const QSize &requestedSize)
{
    auto *response = new DrawingResponse;
    BackgroundJobs::startOn(m_pool, [response, id, requestedSize, easel = m_easel] {
        if (!response->cancelled) {
            response->image = easel->image(id, requestedSize);
        }
        // Queued, since nobody listens before this request has returned.
        QMetaObject::invokeMethod(response, "finished", Qt::QueuedConnection);
    });
    return response;
}
