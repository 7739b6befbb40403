// Reading, grouping and browsing a library.
#include "Figures.h"
#include "Peers.h"

#include "library/AlbumGrouping.h"
#include "library/LibraryScan.h"
#include "library/TrackReader.h"
#include "model/Model.h"
#include "platform/text/TextOrder.h"

#include <QCoreApplication>

#include <algorithm>
#include <fstream>
#include <numeric>
#include <random>

namespace {

constexpr int manyTracks = 100'000;

class NoPanels final : public Panels {
public:
    void open(const Request &, Answer) override { }
};

/// As many tracks as asked for, twelve an album, with Polish and English names and some discs.
std::vector<Track> makeTracks(int count)
{
    static const std::vector<QString> words {QStringLiteral("Noc"), QStringLiteral("światło"), QStringLiteral("Żar"),
        QStringLiteral("river"), QStringLiteral("Glass"), QStringLiteral("łąka"), QStringLiteral("dawn"),
        QStringLiteral("Cień")};
    std::mt19937 random(7);
    const auto word = [&] { return words[random() % words.size()]; };
    std::vector<Track> tracks;
    tracks.reserve(std::size_t(count));
    QString artist;
    QString album;
    for (int i = 0; i < count; ++i) {
        if (i % 12 == 0) {
            artist = word() + u' ' + word() + u' ' + QString::number(random() % 700);
            album = word() + u' ' + word() + (i % 120 == 0 ? QStringLiteral(" (CD 1)") : QString());
        }
        Track track;
        track.id = QUuid::createUuid();
        track.title = word() + u' ' + QString::number(random() % 100);
        track.artist = artist;
        track.album = album;
        track.bytes = std::int64_t(random() % 40'000'000);
        track.info.trackNumber = i % 12 + 1;
        track.info.discNumber = i % 24 < 12 ? 0 : 1;
        track.info.year = QString::number(1960 + random() % 60);
        track.info.codec = QStringLiteral("FLAC");
        track.url = (QStringLiteral("/music/") + artist + u'/' + QString::number(i / 12) + QStringLiteral(" - ") + album
            + QStringLiteral("/%1 - ").arg(i % 12 + 1, 2, 10, QLatin1Char('0')) + track.title + QStringLiteral(".flac"))
                        .toStdString();
        tracks.push_back(std::move(track));
    }
    return tracks;
}

std::vector<std::filesystem::path> flacFiles(const std::filesystem::path &library)
{
    std::vector<std::filesystem::path> files = scanAudio({library});
    std::erase_if(files, [](const std::filesystem::path &file) { return file.extension() != ".flac"; });
    return files;
}

} // namespace

namespace Bench {

void import(const std::filesystem::path &library)
{
    const std::vector<std::filesystem::path> files = scanAudio({library});
    const auto count = double(files.size());
    (void)Peers::scan(files); // the page cache is warm for both
    print("import",
        inTurn(
            [&] {
                std::vector<Track> tracks; // freed outside the time, as the program keeps them
                const double time = seconds([&] {
                    tracks = readTracks(
                        {.urls = {library}, .known = {}, .artworkOverrides = {}, .artwork = {}}, [](int, int) {
                        }).tracks;
                });
                return double(tracks.size()) / time;
            },
            [&] { return count / seconds([&] { (void)Peers::scan(files); }); }));
}

void flac(const std::filesystem::path &library)
{
    const std::vector<std::filesystem::path> files = flacFiles(library);
    const auto count = double(files.size());
    (void)Peers::scanFlac(files);
    print("flac",
        inTurn(
            [&] {
                return count / seconds([&] {
                    for (const std::filesystem::path &file : files) {
                        (void)AudioInfo::readFLAC(file);
                    }
                });
            },
            [&] { return count / seconds([&] { (void)Peers::scanFlac(files); }); }));
}

void group(const std::filesystem::path &)
{
    const std::vector<Track> tracks = makeTracks(manyTracks);
    std::vector<QString> names;
    for (const Track &track : tracks) {
        names.push_back(track.artist + u' ' + track.title);
    }
    print("group",
        inTurn([&] { return seconds([&] { (void)AlbumGrouping::albums(tracks); }); },
            [&] {
                return seconds([&] {
                    std::vector<QCollatorSortKey> keys;
                    keys.reserve(names.size());
                    for (const QString &name : names) {
                        keys.push_back(TextOrder::key(name));
                    }
                    std::vector<std::size_t> order(names.size());
                    std::iota(order.begin(), order.end(), 0);
                    std::sort(
                        order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
                });
            }));
}

void browse(const std::filesystem::path &)
{
    const WorkFolder folder;
    NoPanels panels;
    Settings settings(folder.path() / "settings.json");
    MarluneModel model({.settings = settings,
        .panels = panels,
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {},
        .supportFolder = folder.path(),
        .restoreLibrary = false});
    // Empty files: a track's names then come from its path, as they do for untagged music.
    for (const Track &track : makeTracks(manyTracks)) {
        const std::filesystem::path file = folder.path() / track.url.relative_path().replace_extension(".mp3");
        std::filesystem::create_directories(file.parent_path());
        std::ofstream stream(file);
    }
    model.importURLs({folder.path() / "music"}, false, false);
    while (model.busy()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    const auto read = [&] {
        return seconds([&] {
            (void)model.albums();
            (void)model.filteredTracks();
        });
    };
    bool narrow = false;
    std::vector<double> first;
    std::vector<double> second;
    for (int turn = 0; turn < rounds; ++turn) {
        narrow = !narrow;
        model.setSortMode(narrow ? QStringLiteral("Album") : QStringLiteral("Wykonawca"));
        first.push_back(read());
        second.push_back(read());
    }
    print("browse", {median(second), median(first)});
}

} // namespace Bench
