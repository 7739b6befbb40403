// The soft shadow under covers and sheets as a picture to be stretched by its borders: "image://shadow/RADIUS/BLUR" in
// logical pixels. The shape's corner has RADIUS, its edge lies BLUR inside the picture. Cheaper than an effect for each item.
#pragma once

#include <QImage>
#include <QQuickImageProvider>

class ShadowProvider : public QQuickImageProvider {
public:
    ShadowProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    /// Black with falling alpha; the picture's border is blur + radius + blur on each side of a single middle pixel.
    [[nodiscard]] static QImage draw(int radius, int blur);
};
