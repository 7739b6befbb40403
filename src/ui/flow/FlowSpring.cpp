#include "ui/flow/FlowSpring.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double response = 0.28; // seconds: the period without damping
constexpr double damping = 0.88; // of the critical one
constexpr double frequency = 2 * std::numbers::pi / response;
constexpr double nearPlace = 0.0005; // a fraction of a pixel
constexpr double slowSpeed = 0.01;

} // namespace

bool FlowSpring::isAtRest() const
{
    return m_place == m_goal && m_speed == 0;
}

void FlowSpring::jumpTo(double goal)
{
    m_place = goal;
    m_goal = goal;
    m_speed = 0;
}

void FlowSpring::advance(double seconds)
{
    if (!(seconds > 0) || isAtRest()) {
        return;
    }
    // x'' + 2 damping frequency x' + frequency² x = 0 for the distance from the goal; the damping is below 1.
    const double decay = damping * frequency;
    const double swing = frequency * std::sqrt(1 - damping * damping);
    const double distance = m_place - m_goal;
    const double sine = (m_speed + decay * distance) / swing;
    const double fall = std::exp(-decay * seconds);
    const double cosNow = std::cos(swing * seconds);
    const double sinNow = std::sin(swing * seconds);
    m_place = m_goal + fall * (distance * cosNow + sine * sinNow);
    m_speed = fall * ((sine * swing - decay * distance) * cosNow - (distance * swing + decay * sine) * sinNow);
    if (std::abs(m_place - m_goal) < nearPlace && std::abs(m_speed) < slowSpeed) {
        jumpTo(m_goal);
    }
}
