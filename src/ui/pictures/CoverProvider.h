// Covers for QML: "image://cover/NAME/RADIUS", NAME being the store's, RADIUS that of the corners in thousandths of the
// side. The picture fills a square of the requested size.
//
// Decoding runs on threads of its own, so that scrolling waits for no picture; what was decoded last is kept. A cover
// that is no picture comes out as one transparent pixel, which the page takes as "show the stand-in".
#pragma once

#include "ui/pictures/CoverStore.h"

#include <QCache>
#include <QImage>
#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <memory>

class CoverProvider : public QQuickAsyncImageProvider {
public:
    explicit CoverProvider(std::shared_ptr<const CoverStore> store);
    ~CoverProvider() override;

    QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

    /// `encoded` filling a square of `side` pixels, corners rounded by `radius` pixels. Null if it is no picture.
    [[nodiscard]] static QImage draw(const QByteArray &encoded, int side, double radius);

private:
    struct Decoder;
    std::shared_ptr<Decoder> m_decoder;
    QThreadPool m_pool;
};
