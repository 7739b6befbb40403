// A place that follows its goal like a mass on a damped spring, wherever the goal goes meanwhile: neither the place nor
// its speed ever jumps. The motion is worked out for any length of step, so that it does not depend on the frames.
#pragma once

class FlowSpring {
public:
    /// In places, and places a second.
    [[nodiscard]] double place() const { return m_place; }
    [[nodiscard]] double speed() const { return m_speed; }
    [[nodiscard]] double goal() const { return m_goal; }
    [[nodiscard]] bool isAtRest() const;

    void setGoal(double goal) { m_goal = goal; }
    /// At the goal, at rest, without a motion.
    void jumpTo(double goal);
    /// Put elsewhere, its speed and its goal kept.
    void setPlace(double place) { m_place = place; }
    void advance(double seconds);

private:
    double m_place = 0;
    double m_speed = 0;
    double m_goal = 0;
};
