// The iPods that the program knows by name, and what sets the drawing of one apart from another's.
//
// Values; nothing fails; any thread.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

struct IPodProfile {
    /// Which drawing.
    enum class Shape : std::uint8_t {
        Early,
        Buttons,
        Wheel,
        Mini,
        Nano,
        NanoWide,
        Touch,
        SquareTouch,
        ShuffleStick,
        ShuffleClip,
        ShuffleRemote,
        Unknown,
    };

    QString id; ///< what a choice by hand is stored under
    QString name;
    Shape shape = Shape::Unknown;
    double ratio = 1; ///< height of the body to its width
    double screenRatio = 1; ///< width of the screen to its height
    QString support; ///< one line on the firmware
    std::optional<QString> target; ///< the firmware's name for the model, where that alone tells it
    QString finish; ///< its usual colour

    bool operator==(const IPodProfile &) const = default;

    /// All models, in the order in which they are offered.
    [[nodiscard]] static const std::vector<IPodProfile> &all();
    /// The one that stands for a model that is not known; it is not among all().
    [[nodiscard]] static const IPodProfile &fallback();
    /// The first of all() with that target, else the fallback.
    [[nodiscard]] static const IPodProfile &automatic(const std::optional<QString> &target);
    /// Null where none of all() has it.
    [[nodiscard]] static const IPodProfile *withId(const QString &id);
};
