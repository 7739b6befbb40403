// Reading, grouping and browsing a library.
#include "Figures.h"
#include "MadeLibrary.h"
#include "Peers.h"

#include "library/AlbumGrouping.h"
#include "library/LibraryScan.h"
#include "library/TrackReader.h"
#include "model/Model.h"
#include "platform/text/TextOrder.h"

#include <QCoreApplication>

#include <algorithm>
#include <numeric>

namespace {

class NoPanels final : public Panels {
public:
    void open(const Request &, Answer) override { }
};

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
        .readTracks = readManyTracks,
        .restoreLibrary = false});
    model.importURLs({folder.path()}, false, false);
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
