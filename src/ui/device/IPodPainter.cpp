#include "ui/device/IPodPainter.h"

#include "ui/pictures/ContinuousCorners.h"

#include <QPainter>

QColor IPodPainter::screenInk(const IPodProfile &profile)
{
    return profile.screenRatio == 1.25 ? QColor::fromRgbF(0.24F, 0.24F, 0.24F) : QColor::fromRgbF(1, 1, 1, 0.8F);
}

QImage IPodPainter::draw(
    const IPodProfile &profile, const QString &finish, const IPodLayout &layout, Screen screen, double pixelRatio)
{
    const QSizeF whole = (layout.body + QSizeF(2 * margin, 2 * margin)) * pixelRatio;
    QImage image(whole.toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixelRatio, pixelRatio);
    painter.translate(margin, margin);
    const IPodFinish colours = IPodFinish::named(finish);
    painter.fillPath(continuousCorners(QRectF(QPointF(), layout.body), 0.055 * layout.body.width()), colours.body);
    if (layout.screen) {
        const float ground = profile.screenRatio == 1.25 ? 0.73F : 0.06F;
        painter.fillRect(*layout.screen, QColor::fromRgbF(ground, ground, ground));
        painter.setPen(screenInk(profile));
        if (screen == Screen::Lit) {
            painter.drawText(*layout.screen, Qt::AlignCenter, QStringLiteral("iPod"));
        }
    }
    if (layout.wheel) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colours.ring);
        painter.drawEllipse(*layout.wheel);
    }
    return image;
}

QImage IPodPainter::drawGlass(const IPodProfile &, const IPodLayout &, double)
{
    return {};
}
