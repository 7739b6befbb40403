#include "MadeLibrary.h"
#include "Figures.h"

#include "platform/text/TextOrder.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace Bench {

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

TracksRead readManyTracks(TrackImport, const ImportProgress &, const std::stop_token &)
{
    return {.tracks = makeTracks(manyTracks)};
}

double secondsToSortByKeys()
{
    static const std::vector<QCollatorSortKey> keys = [] {
        std::vector<QCollatorSortKey> made;
        for (const Track &track : makeTracks(manyTracks)) {
            made.push_back(TextOrder::key(track.artist + track.title));
        }
        return made;
    }();
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    return seconds([&] {
        std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    });
}

} // namespace Bench
