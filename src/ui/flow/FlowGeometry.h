// Where the carousel's covers stand: pure functions of how far each is from the middle. Lengths are in any unit, angles
// in degrees. A cover is a square with the upper part of its reflection below it, together its card.
#pragma once

#include <QMatrix4x4>

namespace FlowGeometry {

/// The height of a card of width 1.
constexpr double cardHeight = 1.38;
/// Covers further away than this are not seen at rest.
constexpr int reach = 3;

/// How a card stands.
struct Pose {
    double opacity = 1;
    double angle = 0; ///< around the upright line through its middle; above 0 its left edge is the nearer one
    double scale = 1; ///< around its middle
    double shift = 0; ///< of its middle from the region's, in widths of a card that is not scaled
    double height = 0; ///< what is higher lies on top

    bool operator==(const Pose &) const = default;
};

/// Of the card whose place is `offset` behind the middle one; in between while the carousel moves.
[[nodiscard]] Pose pose(double offset);

/// The side of a cover in a region of this size.
[[nodiscard]] double coverSide(double width, double height);

/// From the points of a card of this width, the upper left corner being 0, 0, to where they are seen around its middle.
/// What lies before or behind the picture's plane is brought into it.
[[nodiscard]] QMatrix4x4 projection(const Pose &pose, double side);

} // namespace FlowGeometry
