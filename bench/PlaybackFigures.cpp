// How soon a track is heard after it was asked for.
#include "Figures.h"

#include "library/LibraryScan.h"
#include "playback/Playback.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <clocale>
#include <map>

namespace {

/// Seconds from play() to the first position above 0.
double untilHeard(Playback &playback, const std::filesystem::path &file)
{
    Track track;
    track.id = QUuid::createUuid();
    track.url = file;
    QTimer wake; // an event for the limit, where no other comes
    wake.start(1'000);
    const double time = Bench::seconds([&] {
        playback.play(track, {});
        for (const QDeadlineTimer limit(10'000);
            playback.position() <= 0 && !playback.error() && !limit.hasExpired();) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    });
    Bench::require(playback.position() > 0, "a track that plays");
    return time;
}

} // namespace

namespace Bench {

// Into nothing: a file of each format in turn, with a player that is there already; beside it the first track of each
// player.
void play(const std::filesystem::path &library)
{
    std::setlocale(LC_NUMERIC, "C");
    std::map<std::string, std::filesystem::path> formats;
    for (const std::filesystem::path &file : scanAudio({library})) {
        formats.emplace(file.extension(), file);
    }
    require(!formats.empty(), "music in the library");
    std::vector<double> first;
    std::vector<double> later;
    for (int round = 0; round < rounds; ++round) {
        Playback playback("null");
        first.push_back(untilHeard(playback, formats.begin()->second));
        for (const auto &[extension, file] : formats) {
            later.push_back(untilHeard(playback, file));
        }
    }
    print("play", {median(later), median(first)});
}

} // namespace Bench
