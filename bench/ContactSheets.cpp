// marlune_contact_sheets FOLDER [WIDTH [RATIO [FINISH [MODEL...]]]]: draws the iPods onto sheets to be looked at, PNG
// files in FOLDER, on a light and on a dark ground.
//
// Without a FINISH there is one sheet of all models in their own finish and one for each finish; "own" stands for the
// former. WIDTH is a body's largest in logical pixels, RATIO the device pixels to one.
#include "ui/MarluneApp.h"
#include "ui/device/IPodPainter.h"

#include <QDir>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Wish {
    QDir folder;
    double width = 120;
    double ratio = 1;
    QStringList models;
};

std::vector<IPodProfile> profiles(const QStringList &ids)
{
    std::vector<IPodProfile> result = IPodProfile::all();
    result.push_back(IPodProfile::fallback());
    std::erase_if(result, [&](const IPodProfile &profile) { return !ids.isEmpty() && !ids.contains(profile.id); });
    return result;
}

/// Models in rows, each in `finish` or, where that is "own", in its usual one.
QImage sheet(const Wish &wish, const QString &finish, const QColor &ground)
{
    constexpr int perRow = 11;
    const double cell = wish.width + 2 * IPodPainter::margin;
    const double tallest = wish.width * 190 / 120 * 1.1;
    const std::vector<IPodProfile> shown = profiles(wish.models);
    const int columns = std::min(int(shown.size()), perRow);
    const int rows = (int(shown.size()) + columns - 1) / columns;
    const QSizeF step = QSizeF(cell, tallest + 2 * IPodPainter::margin) * wish.ratio;
    QImage result(int(step.width()) * columns, int(step.height()) * rows, QImage::Format_RGB32);
    result.fill(ground);
    QPainter painter(&result);
    for (int place = 0; place < int(shown.size()); ++place) {
        const IPodProfile &profile = shown[std::size_t(place)];
        const IPodLayout layout = IPodLayout::of(profile, wish.width, tallest, wish.ratio);
        const QImage drawn = IPodPainter::draw(profile, finish == QLatin1String("own") ? profile.finish : finish,
            layout, IPodPainter::Screen::Lit, wish.ratio);
        const int x = place % columns * int(step.width()) + (int(step.width()) - drawn.width()) / 2;
        const int y = place / columns * int(step.height()) + (int(step.height()) - drawn.height()) / 2;
        painter.drawImage(x, y, drawn);
    }
    return result;
}

bool write(const Wish &wish, const QString &finish)
{
    const std::pair<const char *, QColor> grounds[]
        = {{"light", QColor(0xF5, 0xF5, 0xF7)}, {"dark", QColor(0x1C, 0x1C, 0x1E)}};
    return std::all_of(std::begin(grounds), std::end(grounds), [&](const auto &ground) {
        const QString name = finish + u'-' + QLatin1String(ground.first) + QStringLiteral(".png");
        return sheet(wish, finish, ground.second).save(wish.folder.filePath(name));
    });
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: %s FOLDER [WIDTH [RATIO [FINISH [MODEL...]]]]\n", argv[0]);
        return 2;
    }
    MarluneApp::prepareApplication();
    const Wish wish {.folder = QDir(arguments[1]),
        .width = arguments.value(2, QStringLiteral("120")).toDouble(),
        .ratio = arguments.value(3, QStringLiteral("1")).toDouble(),
        .models = arguments.mid(5)};
    QStringList finishes = arguments.mid(4, 1);
    if (finishes.isEmpty()) {
        finishes = IPodFinish::names();
        finishes.prepend(QStringLiteral("own"));
    }
    const bool written = QDir().mkpath(arguments[1])
        && std::all_of(finishes.begin(), finishes.end(), [&](const QString &finish) { return write(wish, finish); });
    if (!written) {
        std::fprintf(stderr, "%s: the sheets could not be written\n", argv[0]);
    }
    return written ? 0 : 1;
}
