// The soft shadow under covers and sheets as a picture to be stretched by its borders:
// "image://shadow/RADIUS/BLUR/RATIO", lengths in logical pixels, RATIO the device pixels to one. The shape's corner has
// RADIUS, its edge lies BLUR inside the picture. Cheaper than an effect for each item.
#pragma once

#include <QImage>
#include <QQuickImageProvider>

class ShadowProvider : public QQuickImageProvider {
public:
    ShadowProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    /// Black with falling alpha. Its borders, which must not be stretched, are 2 * blur + radius; in device pixels.
    [[nodiscard]] static QImage draw(double radius, double blur);
};
