// The real window while a library comes in and is scrolled through: does the UI thread keep its beat, how much memory
// does it take, which frames come late.
#include "BenchWindow.h"
#include "Figures.h"

#include "ui/MarluneApp.h"
#include "ui/pictures/CoverStore.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

namespace {

QQuickItem &view(const MarluneApp::Program &program, const char *name)
{
    QQuickItem *found = Bench::findItem(program.window()->contentItem(), name);
    Bench::require(found, name);
    return *found;
}

/// Imports the library into a window of usual size, and lets it come to rest.
void showLibrary(MarluneApp::Program &program, const std::filesystem::path &library)
{
    program.window()->setGeometry(0, 0, 1260, 820); // a screen without hardware can be smaller
    program.model().importURLs({library}, false, false);
    while (program.model().busy()) {
        Bench::runFor(20);
    }
    Bench::runFor(3000);
}

/// All models as the handbook shows them, with no page around them.
constexpr char gallery[] = R"(
import QtQuick
import Marlune

Window {
    id: root

    required property var models

    width: 975
    height: 820
    visible: true
    color: Tokens.color.content

    GridView {
        objectName: "albumGrid"
        anchors.fill: parent
        cellWidth: 160
        cellHeight: 250
        cacheBuffer: 250
        model: root.models
        delegate: IPodIllustration {
            required property string modelData
            profileId: modelData
            width: 120
            maxHeight: 190
        }
    }
}
)";

} // namespace

namespace Bench {

void heartbeatAndMemory(const std::filesystem::path &library)
{
    const WorkFolder folder;
    MarluneApp::Program program(emptySetup(folder));
    runFor(2000);

    QElapsedTimer sinceTick;
    qint64 longest = 0; // ns
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    QObject::connect(&beat, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceTick.nsecsElapsed());
        sinceTick.restart();
    });
    sinceTick.start();
    beat.start(5);
    MarluneModel &model = program.model();
    model.importURLs({library}, false, true);
    while (model.busy()) {
        runFor(20);
    }
    runFor(3000); // the covers come in
    beat.stop();
    std::printf("heartbeat %.1f ms at %zu tracks\n", double(longest) / 1e6, model.tracks().size());

    std::map<const char *, double> artwork;
    for (const Track &track : model.tracks()) {
        if (track.artwork) {
            artwork[track.artwork->constData()] = double(track.artwork->size());
        }
    }
    double distinct = 0;
    std::set<QByteArray> contents;
    for (const Track &track : model.tracks()) {
        if (track.artwork && contents.insert(*track.artwork).second) {
            distinct += double(track.artwork->size());
        }
    }
    if (contents.size() != artwork.size()) {
        std::printf("memory: %zu buffers for %zu distinct covers\n", artwork.size(), contents.size());
    }
    print("memory", {residentBytes(), distinct});
    std::printf("memory-above-artwork %.1f MB\n", (residentBytes() - distinct) / 1e6);
}

void tiles(const std::filesystem::path &library)
{
    renderWithoutPause();
    constexpr double pixelsPerFrame = 40;

    const WorkFolder folder;
    MarluneApp::Program program(emptySetup(folder));
    showLibrary(program, library);
    scrollThrough("tiles", *program.window(), view(program, "albumGrid"), pixelsPerFrame);
}

void scroll(const std::filesystem::path &library)
{
    renderWithoutPause();
    constexpr int frames = 1500; // from end to end

    const WorkFolder folder;
    MarluneApp::Program program(emptySetup(folder));
    showLibrary(program, library);
    for (const auto &[mode, name, figure] : {std::tuple(ViewMode::Albums, "albumGrid", "scroll-albums"),
             std::tuple(ViewMode::Tracks, "trackList", "scroll-tracks"),
             std::tuple(ViewMode::Folders, "folderTree", "scroll-folders")}) {
        program.model().setViewMode(viewModeText(mode));
        runFor(2000);
        scrollThrough(figure, *program.window(), view(program, name), frames);
    }
}

void coversMemory(const std::filesystem::path &library)
{
    renderWithoutPause();
    constexpr double pixelsPerFrame = 120;

    const WorkFolder folder;
    MarluneApp::Program program(emptySetup(folder));
    showLibrary(program, library);
    const double before = residentBytes();
    scrollThrough("covers-memory", *program.window(), view(program, "albumGrid"), pixelsPerFrame);
    runFor(1000); // what was decoded last comes in
    std::printf("covers-memory %.1f MB above %.1f MB, %zu albums\n", (residentBytes() - before) / 1e6, before / 1e6,
        program.model().albums()->size());
}

void drawings(const std::filesystem::path &)
{
    renderWithoutPause();
    constexpr double pixelsPerFrame = 8;

    const WorkFolder folder;
    (void)emptySetup(folder);
    QStringList models;
    for (const IPodProfile &profile : IPodProfile::all()) {
        models.append(profile.id);
    }
    QQmlApplicationEngine engine;
    MarluneApp::prepareEngine(engine, std::make_shared<CoverStore>());
    engine.setInitialProperties({{QStringLiteral("models"), models}});
    engine.loadData(gallery);
    auto *window
        = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().front());
    QQuickItem *grid = window ? findItem(window->contentItem(), "albumGrid") : nullptr;
    require(grid, "the gallery");
    runFor(1000);
    for (const char *pass : {"drawings", "drawings-again"}) { // drawn on the way, and then at hand
        grid->setProperty("contentY", 0);
        runFor(300);
        scrollThrough(pass, *window, *grid, pixelsPerFrame);
    }
}

} // namespace Bench
