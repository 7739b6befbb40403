#include "ui/device/IPodProvider.h"

#include "ui/device/IPodPainter.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr qsizetype keptDrawings = 48'000'000; // bytes
constexpr double maxLength = 2000; // logical pixels
constexpr double maxRatio = 4;

QImage drawAddressed(const QString &id)
{
    const QStringList parts = id.split(u'/');
    if (parts.size() != 6) {
        return {};
    }
    const IPodProfile *known = IPodProfile::withId(parts[0]);
    const IPodProfile &profile = known ? *known : IPodProfile::fallback();
    const double ratio = std::clamp(parts[4].toDouble(), 1.0, maxRatio);
    const IPodLayout layout = IPodLayout::of(
        profile, std::min(parts[2].toDouble(), maxLength), std::min(parts[3].toDouble(), maxLength), ratio);
    if (parts[5] == QLatin1String("glass")) {
        return IPodPainter::drawGlass(profile, layout, ratio);
    }
    const bool isLit = parts[5] == QLatin1String("lit");
    return IPodPainter::draw(
        profile, parts[1], layout, isLit ? IPodPainter::Screen::Lit : IPodPainter::Screen::Blank, ratio);
}

} // namespace

IPodProvider::IPodProvider()
    : DrawingProvider([](const QString &id, const QSize &) { return drawAddressed(id); }, keptDrawings)
{
}
