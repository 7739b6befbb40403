// What comes back at a start, and what is read again: against one stat() of each file, and against TagLib.
#include "BenchWindow.h"
#include "Peers.h"

#include "library/ReadingCache.h"
#include "library/TrackReader.h"

#include "platform/tasks/Background.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTimer>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <thread>

namespace {

using Paths = std::vector<std::filesystem::path>;

constexpr int trees = 7;

/// So many trees of links to the library's files below `folder`.
void linkTrees(const std::filesystem::path &library, const std::filesystem::path &folder, int count)
{
    for (int tree = 0; tree < count; ++tree) {
        for (const auto &item : std::filesystem::recursive_directory_iterator(library)) {
            const std::filesystem::path there = folder / std::to_string(tree) / item.path().lexically_relative(library);
            if (item.is_directory()) {
                std::filesystem::create_directories(there);
            } else {
                std::filesystem::create_directories(there.parent_path());
                std::filesystem::create_hard_link(item.path(), there);
            }
        }
    }
}

double secondsToStat(const Paths &files)
{
    return Bench::seconds([&] {
        for (const std::filesystem::path &file : files) {
            struct stat status {};
            Bench::require(::stat(file.c_str(), &status) == 0, "a file");
        }
    });
}

std::vector<Track> readAll(const Paths &folders, const std::shared_ptr<ReadingCache> &cache)
{
    return readTracks(
        {.urls = folders, .known = {}, .artworkOverrides = {}, .artwork = {}, .cache = cache}, [](int, int) { })
        .tracks;
}

/// Forgets what the kernel holds of files; false for a user who may not ask for that.
bool dropPageCache()
{
    ::sync();
    std::ofstream file("/proc/sys/vm/drop_caches");
    file << "3" << std::flush;
    return file.good();
}

struct Start {
    double milliseconds = 0;
    QByteArrayList words;
};

/// A process that begins with these settings, until it says that the library is shown.
Start startIn(const std::filesystem::path &folder)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer since;
    since.start();
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("whole-library"), Bench::text(folder)});
    const bool isShown = process.waitForReadyRead(600'000);
    Start start {.milliseconds = double(since.nsecsElapsed()) / 1e6, .words = {}};
    Bench::require(isShown, "a shown library");
    start.words = process.readLine().trimmed().split(' ');
    Bench::require(start.words.size() == 4 && process.waitForFinished(600'000), "its figures");
    return start;
}

} // namespace

namespace Bench {

int wholeLibrary(int argc, char **argv, const std::filesystem::path &folder)
{
    const QGuiApplication application(argc, argv);
    MarluneApp::prepareApplication();
    MarluneApp::Program program({.settingsFile = folder / "settings.json",
        .supportFolder = folder,
        .cacheFile = folder / "library.sqlite",
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {}});

    QQuickWindow *window = program.window();
    require(window, "the window");
    bool isDrawn = false; // the first time
    QElapsedTimer sinceBeat;
    qint64 longest = 0;
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    QObject::connect(&beat, &QTimer::timeout, &beat, [&] {
        longest = std::max(longest, sinceBeat.nsecsElapsed());
        sinceBeat.restart();
    });
    QObject::connect(window, &QQuickWindow::frameSwapped, &beat, [&] {
        if (!std::exchange(isDrawn, true)) {
            sinceBeat.start();
            beat.start(1);
        } else if (!program.model().busy() && !program.model().tracks().empty()) {
            std::set<const char *> pictures;
            double artwork = 0;
            for (const Track &track : program.model().tracks()) {
                if (track.artwork && pictures.insert(track.artwork->constData()).second) {
                    artwork += double(track.artwork->size());
                }
            }
            std::printf("%zu %.1f %.1f %.1f\n", program.model().tracks().size(), double(longest) / 1e6,
                residentBytes() / 1e6, artwork / 1e6);
            std::fflush(stdout);
            (void)BackgroundJobs::drain(std::chrono::minutes(10)); // what is remembered is written
            std::_Exit(0);
        }
    });
    return QGuiApplication::exec();
}

void restart(const std::filesystem::path &library)
{
    const WorkFolder folder;
    linkTrees(library, folder.path() / "music", trees);
    const Paths files = scanAudio({folder.path() / "music"});
    QStringList paths;
    for (const Track &track : readAll({folder.path() / "music"}, nullptr)) {
        paths.append(text(track.url));
    }
    std::this_thread::sleep_for(std::chrono::seconds(4)); // the links have changed the files
    const QJsonObject settings {{QStringLiteral("libraryPaths"), QJsonArray::fromStringList(paths)}};
    std::ofstream(folder.path() / "settings.json") << QJsonDocument(settings).toJson().toStdString();
    const Start first = startIn(folder.path());
    std::printf("restart-first %.0f ms, held %s ms\n", first.milliseconds, first.words[1].constData());
    Start last;
    const Pair figures = inTurn(
        [&] {
            last = startIn(folder.path());
            return last.milliseconds;
        },
        [&] { return secondsToStat(files) * 1000; });
    std::printf("restart %.0f ms for %s tracks, %.0f ms for a stat each, %.1f\n", figures.ours,
        last.words[0].constData(), figures.peer, figures.ours / figures.peer);
    std::printf("restart-heartbeat %s ms\n", last.words[1].constData());
    std::printf("restart-memory %s MB, artwork %s MB, cache %.1f MB\n", last.words[2].constData(),
        last.words[3].constData(), double(std::filesystem::file_size(folder.path() / "library.sqlite")) / 1e6);
}

void rescan(const std::filesystem::path &library)
{
    const WorkFolder folder;
    linkTrees(library, folder.path() / "Music", 1);
    const Paths music {folder.path() / "Music"};
    const Paths files = scanAudio(music);
    std::this_thread::sleep_for(std::chrono::seconds(4));
    const auto cache = std::make_shared<ReadingCache>(folder.path() / "library.sqlite");
    (void)readAll(music, cache);
    cache->flush();
    (void)BackgroundJobs::drain(std::chrono::minutes(10));
    std::vector<Track> tracks;
    print("rescan",
        inTurn(
            [&] {
                tracks.clear(); // freed outside the time, as the program keeps them
                return seconds([&] { tracks = readAll(music, cache); });
            },
            [&] { return secondsToStat(files); }));
}

void importCold(const std::filesystem::path &library)
{
    const Paths files = scanAudio({library});
    if (!dropPageCache()) {
        std::puts("import-cold skipped: only root can have the page cache dropped");
        return;
    }
    std::vector<Track> tracks;
    print("import-cold",
        inTurn(
            [&] {
                (void)dropPageCache();
                return double(files.size()) / seconds([&] { tracks = readAll({library}, nullptr); });
            },
            [&] {
                (void)dropPageCache();
                return double(files.size()) / seconds([&] { (void)Peers::scan(files); });
            },
            3));
}

} // namespace Bench
