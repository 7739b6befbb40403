#include "model/IPodProfile.h"

#include <algorithm>

namespace {

using Shape = IPodProfile::Shape;

struct Row {
    const char16_t *id;
    const char16_t *name;
    Shape shape;
    double ratio;
    double screenRatio;
    const char16_t *support;
    const char16_t *target; ///< may be null
    const char16_t *finish;
};

constexpr double videoRatio = 1.6747572815533982; ///< 103.5 mm by 61.8 mm
constexpr double television = 4.0 / 3;
constexpr const char16_t *none = u"Bez obsługi Rockbox";
constexpr const char16_t *classic = u"Rockbox · osobna instalacja Classic";

// clang-format off
constexpr Row rows[] = {
    {u"ipod1", u"iPod 1. generacji", Shape::Early, 1.65, 1.25, u"Rockbox", u"ipod1g2g", u"white"},
    {u"ipod2", u"iPod 2. generacji", Shape::Early, 1.65, 1.25, u"Rockbox", u"ipod1g2g", u"white"},
    {u"ipod3", u"iPod 3. generacji", Shape::Buttons, 1.7, 1.25, u"Rockbox", u"ipod3g", u"white"},
    {u"ipod4", u"iPod 4. generacji · mono", Shape::Wheel, 1.65, 1.25, u"Rockbox", u"ipod4g", u"white"},
    {u"photo", u"iPod Photo / Color", Shape::Wheel, 1.65, 1.25, u"Rockbox", u"ipodcolor", u"white"},
    {u"u24", u"iPod U2 · 4. generacji", Shape::Wheel, 1.65, 1.25, u"Sprawdź wariant mono / Color", nullptr, u"u2"},
    {u"video", u"iPod Video · 5. generacji", Shape::Wheel, videoRatio, television, u"Rockbox · A1136", u"ipodvideo", u"white"},
    {u"video55", u"iPod Video · 5.5 Enhanced", Shape::Wheel, videoRatio, television, u"Rockbox · A1136", u"ipodvideo", u"white"},
    {u"u25", u"iPod U2 · Video", Shape::Wheel, videoRatio, television, u"Rockbox · ipodvideo", u"ipodvideo", u"u2"},
    {u"classic6", u"iPod classic · 6. generacji", Shape::Wheel, 1.68, television, classic, u"ipod6g", u"silver"},
    {u"classic65", u"iPod classic · 120 GB", Shape::Wheel, 1.68, television, classic, u"ipod6g", u"silver"},
    {u"classic7", u"iPod classic · 160 GB 2009", Shape::Wheel, 1.68, television, classic, u"ipod6g", u"silver"},
    {u"mini1", u"iPod mini · 1. generacji", Shape::Mini, 1.8, 1.25, u"Rockbox", u"ipodmini1g", u"silver"},
    {u"mini2", u"iPod mini · 2. generacji", Shape::Mini, 1.8, 1.25, u"Rockbox", u"ipodmini2g", u"blue"},
    {u"nano1", u"iPod nano · 1. generacji", Shape::Nano, 2.33, 1.33, u"Rockbox", u"ipodnano1g", u"white"},
    {u"nano2", u"iPod nano · 2. generacji", Shape::Nano, 2.33, 1.33, u"Rockbox", u"ipodnano2g", u"green"},
    {u"nano3", u"iPod nano · 3. generacji", Shape::NanoWide, 1.33, television, u"Port w rozwoju · sprawdź NAND i aktualną instrukcję", u"ipodnano3g", u"silver"},
    {u"nano4", u"iPod nano · 4. generacji", Shape::Nano, 2.53, 0.75, none, nullptr, u"orange"},
    {u"nano5", u"iPod nano · 5. generacji", Shape::Nano, 2.53, 0.64, none, nullptr, u"purple"},
    {u"nano6", u"iPod nano · 6. generacji", Shape::SquareTouch, 0.92, 1.0, none, nullptr, u"blue"},
    {u"nano7", u"iPod nano · 7. generacji", Shape::Touch, 1.93, 0.56, none, nullptr, u"green"},
    {u"shuffle1", u"iPod shuffle · 1. generacji", Shape::ShuffleStick, 3.36, 1.0, none, nullptr, u"white"},
    {u"shuffle2", u"iPod shuffle · 2. generacji", Shape::ShuffleClip, 0.66, 1.0, none, nullptr, u"silver"},
    {u"shuffle3", u"iPod shuffle · 3. generacji", Shape::ShuffleRemote, 2.58, 1.0, none, nullptr, u"silver"},
    {u"shuffle4", u"iPod shuffle · 4. generacji", Shape::ShuffleClip, 0.92, 1.0, none, nullptr, u"blue"},
};
// clang-format on

IPodProfile touch(int generation)
{
    const bool early = generation < 5;
    return {.id = QStringLiteral("touch") + QString::number(generation),
        .name = QStringLiteral("iPod touch · ") + QString::number(generation) + QStringLiteral(". generacji"),
        .shape = Shape::Touch,
        .ratio = early ? 1.85 : 2.1,
        .screenRatio = early ? 2.0 / 3 : 40.0 / 71,
        .support = QString::fromUtf16(none),
        .target = std::nullopt,
        .finish = early ? QStringLiteral("black") : QStringLiteral("blue")};
}

} // namespace

const std::vector<IPodProfile> &IPodProfile::all()
{
    static const std::vector<IPodProfile> profiles = [] {
        std::vector<IPodProfile> result;
        for (const Row &row : rows) {
            result.push_back({.id = QString::fromUtf16(row.id),
                .name = QString::fromUtf16(row.name),
                .shape = row.shape,
                .ratio = row.ratio,
                .screenRatio = row.screenRatio,
                .support = QString::fromUtf16(row.support),
                .target = row.target ? std::optional(QString::fromUtf16(row.target)) : std::nullopt,
                .finish = QString::fromUtf16(row.finish)});
        }
        constexpr int touchGenerations = 7;
        for (int generation = 1; generation <= touchGenerations; ++generation) {
            result.push_back(touch(generation));
        }
        return result;
    }();
    return profiles;
}

const IPodProfile &IPodProfile::fallback()
{
    static const IPodProfile profile {.id = QStringLiteral("unknown"),
        .name = QStringLiteral("Wybierz model iPoda"),
        .shape = Shape::Unknown,
        .ratio = 1.65,
        .screenRatio = television,
        .support = QStringLiteral("Model nierozpoznany"),
        .target = std::nullopt,
        .finish = QStringLiteral("white")};
    return profile;
}

const IPodProfile &IPodProfile::automatic(const std::optional<QString> &target)
{
    if (!target) {
        return fallback();
    }
    // Old builds for the first nano say no generation.
    const QString wanted = *target == QLatin1String("ipodnano") ? QStringLiteral("ipodnano1g") : *target;
    const auto found = std::find_if(
        all().begin(), all().end(), [&](const IPodProfile &profile) { return profile.target == wanted; });
    return found != all().end() ? *found : fallback();
}

const IPodProfile *IPodProfile::withId(const QString &id)
{
    const auto found
        = std::find_if(all().begin(), all().end(), [&](const IPodProfile &profile) { return profile.id == id; });
    return found != all().end() ? &*found : nullptr;
}
