// A rectangle whose edges bend into its corners by and by, as hardware is shaped, where a circle's arc begins at once.
#pragma once

#include <QPainterPath>
#include <QRectF>

/// `radius` is that of the arc which the corner stands for; it is bounded by what the sides have room for.
[[nodiscard]] QPainterPath continuousCorners(const QRectF &rect, double radius);
