#include "ui/pictures/ShadowProvider.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double largest = 64;
constexpr double maxRatio = 4;

/// Distance from the point to the edge of a square of half side `half` with corners of `radius`; negative inside.
double distanceToEdge(double x, double y, double half, double radius)
{
    const double dx = std::abs(x) - half + radius;
    const double dy = std::abs(y) - half + radius;
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) - radius;
}

} // namespace

ShadowProvider::ShadowProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage ShadowProvider::requestImage(const QString &id, QSize *size, const QSize &)
{
    const double ratio = std::clamp(id.section(u'/', 2, 2).toDouble(), 1.0, maxRatio);
    const double radius = std::clamp(id.section(u'/', 0, 0).toDouble(), 0.0, largest);
    const double blur = std::clamp(id.section(u'/', 1, 1).toDouble(), 1.0, largest);
    const QImage image = draw(radius * ratio, blur * ratio);
    if (size) {
        *size = image.size();
    }
    return image;
}

QImage ShadowProvider::draw(double radius, double blur)
{
    const int side = 2 * int(std::ceil(2 * blur + radius)) + 1;
    const double middle = side / 2.0;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const double distance = distanceToEdge(x + 0.5 - middle, y + 0.5 - middle, middle - blur, radius);
            // A blurred edge is close to the error function; half a blur is its deviation.
            const double shade = 0.5 * std::erfc(distance / (0.5 * blur * std::sqrt(2.0)));
            line[x] = qRgba(0, 0, 0, int(std::lround(255 * shade)));
        }
    }
    return image;
}
