// The real window while a library comes in: does the UI thread keep its beat, and how much memory does it take.
#include "Figures.h"

#include "ui/MarluneApp.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTimer>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <set>

namespace {

double residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    double pages = 0;
    double resident = 0;
    statm >> pages >> resident;
    return resident * double(::sysconf(_SC_PAGESIZE));
}

void runFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

namespace Bench {

void heartbeatAndMemory(const std::filesystem::path &library)
{
    const WorkFolder folder;
    MarluneApp::prepareApplication();
    MarluneApp::Program program({.settingsFile = folder.path() / "settings.json",
        .supportFolder = folder.path(),
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {},
        .panels = nullptr});
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

} // namespace Bench
