// Pictures for QML that are drawn when they are asked for, on threads of their own; what was drawn last is kept.
#pragma once

#include <QImage>
#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <functional>
#include <memory>

class DrawingProvider : public QQuickAsyncImageProvider {
public:
    /// Draws what an address' last part asks for, `requested` being the size that the page wants; on any thread, and
    /// the same for the same request. Null comes out as one transparent pixel.
    using Draw = std::function<QImage(const QString &id, const QSize &requested)>;

    DrawingProvider(Draw draw, qsizetype cacheBytes);
    ~DrawingProvider() override;

    QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

private:
    struct Easel;
    std::shared_ptr<Easel> m_easel;
    QThreadPool m_pool;
};
