#include "ui/device/IPodFinish.h"

#include "ui/device/Shades.h"

#include <algorithm>
#include <iterator>

namespace {

using Shades::grey;

struct Row {
    const char *name;
    QColor body;
    bool polished = false;
};

const Row rows[] = {
    {"white", grey(0.985), true},
    {"black", grey(0.14), true},
    {"u2", grey(0.14), true},
    {"silver", grey(0.76)},
    {"blue", QColor::fromRgbF(0.3F, 0.63F, 0.83F)},
    {"green", QColor::fromRgbF(0.51F, 0.72F, 0.28F)},
    {"orange", QColor::fromRgbF(0.94F, 0.48F, 0.12F)},
    {"purple", QColor::fromRgbF(0.62F, 0.42F, 0.8F)},
    {"pink", QColor::fromRgbF(0.89F, 0.42F, 0.61F)},
    {"gold", QColor::fromRgbF(0.86F, 0.76F, 0.48F)},
};

} // namespace

IPodFinish IPodFinish::named(const QString &name)
{
    const Row *row = std::find_if(
        std::begin(rows), std::end(rows), [&](const Row &each) { return name == QLatin1String(each.name); });
    if (row == std::end(rows)) {
        row = std::begin(rows);
    }
    const bool isU2 = name == QLatin1String("u2");
    const bool isBlack = name == QLatin1String("black");
    const bool isDark = isU2 || isBlack;
    return {.body = row->body,
        .ring = isU2 ? Shades::red : grey(isBlack ? 0.22 : 0.77),
        .legend = isDark ? grey(1, 0.7) : grey(0.38),
        .centre = grey(isDark ? 0.18 : 0.985),
        .home = isBlack ? QColor(Qt::black) : QColor(Qt::white),
        .polished = row->polished};
}

QStringList IPodFinish::names()
{
    QStringList result;
    std::transform(std::begin(rows), std::end(rows), std::back_inserter(result),
        [](const Row &row) { return QString::fromLatin1(row.name); });
    return result;
}
