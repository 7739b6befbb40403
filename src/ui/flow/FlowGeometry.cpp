#include "ui/flow/FlowGeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace FlowGeometry {

namespace {

constexpr double sideAngle = 58; // degrees
constexpr double sideScale = 0.78;
constexpr double spacing = 0.62; // of a cover's side
constexpr double perspective = 0.65; // the card's longer edge, in distances of the eye
constexpr double outerOpacity = 0.5;
constexpr double top = 10; // height of the middle one

} // namespace

Pose pose(double offset)
{
    const double distance = std::abs(offset);
    const double turn = std::clamp(offset, -1.0, 1.0);
    // 1 up to the last but one place, a half at the last, 0 behind it.
    const double outer = 1 - (distance - (reach - 1)) * outerOpacity;
    return {.opacity = std::clamp(outer, 0.0, 1.0),
        .angle = -sideAngle * turn,
        .scale = 1 - (1 - sideScale) * std::abs(turn),
        .shift = spacing * offset,
        .height = top - distance};
}

double coverSide(double width, double height)
{
    constexpr double widest = 520;
    return std::max(0.0, std::min({width * 0.31, height / 1.43, widest}));
}

QMatrix4x4 projection(const Pose &pose, double side)
{
    const double middleX = side / 2;
    const double middleY = side * cardHeight / 2;
    const double angle = pose.angle * std::numbers::pi / 180;
    const double eye = side * std::max(1.0, cardHeight) / perspective;
    // A point (x, y) of the card, from its middle, turns to (x cos, y, -x sin); the eye sees it at eye / (eye + x sin).
    const double across = pose.scale * std::cos(angle);
    const double away = std::sin(angle) / eye; // turned first, then scaled
    const QMatrix4x4 turned(float(across), 0, 0, 0, //
        0, float(pose.scale), 0, 0, //
        0, 0, 1, 0, //
        float(away), 0, 0, 1);
    QMatrix4x4 result;
    result.translate(float(middleX + pose.shift * side), float(middleY)); // of what is seen: each has its own eye
    result *= turned;
    result.translate(float(-middleX), float(-middleY));
    return result;
}

} // namespace FlowGeometry
