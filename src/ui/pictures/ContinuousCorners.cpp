#include "ui/pictures/ContinuousCorners.h"

#include <algorithm>

namespace {

/// How far from the corner, in radii, the curve leaves a side.
constexpr double reach = 1.528665;

/// One corner as three Bézier curves in radii from it: along the side that is left, along the side that is reached.
constexpr double curves[3][3][2] = {{{1.088493, 0}, {0.868407, 0}, {0.631494, 0.074911}},
    {{0.372824, 0.169060}, {0.169060, 0.372824}, {0.074911, 0.631494}}, {{0, 0.868407}, {0, 1.088493}, {0, reach}}};

} // namespace

QPainterPath continuousCorners(const QRectF &rect, double radius)
{
    const double r = std::clamp(radius, 0.0, std::min(rect.width(), rect.height()) / (2 * reach));
    QPainterPath path;
    const QPointF corners[] = {rect.topRight(), rect.bottomRight(), rect.bottomLeft(), rect.topLeft()};
    QPointF along(1, 0); // the way of the side that is left
    path.moveTo(rect.topLeft() + QPointF(reach * r, 0));
    for (const QPointF &corner : corners) {
        const QPointF onward(-along.y(), along.x());
        const auto at
            = [&](const double(&place)[2]) { return corner - along * (place[0] * r) + onward * (place[1] * r); };
        path.lineTo(corner - along * (reach * r));
        for (const auto &curve : curves) {
            path.cubicTo(at(curve[0]), at(curve[1]), at(curve[2]));
        }
        along = onward;
    }
    path.closeSubpath();
    return path;
}
