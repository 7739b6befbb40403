// What the library page lists, held against computations of its own.
#include "support/SampleTracks.h"

#include "library/AlbumGrouping.h"
#include "model/Browsing.h"
#include "platform/text/TextOrder.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace {

QString titles(const Browsing &browsing)
{
    QStringList result;
    for (const auto &album : *browsing.albums()) {
        result.append(album->title);
    }
    return result.join(u", "_s);
}

/// One album of two discs, one of two MP3 files without a year, one in high resolution; with new ids at each call.
std::vector<Track> someMusic()
{
    std::vector<Track> tracks = makeTracks({{"Band/Double/CD1/01 a.flac", "Double", "Band", 1},
        {"Band/Double/CD2/01 a.flac", "Double", "Band", 2}, {"Żuk/Plain/1 x.mp3", "Plain", "Żuk"},
        {"Żuk/Plain/2 y.mp3", "Plain", "Żuk"}, {"High/Resolution/1.flac", "High 10", "abba"}});
    for (Track &track : tracks) {
        const bool isFlac = track.url.extension() == ".flac";
        track.info.codec = isFlac ? u"FLAC"_s : u"MP3"_s;
        track.info.bitDepth = isFlac ? 16 : 0;
        track.info.year = isFlac ? u"1999"_s : QString();
        track.bytes = 100;
    }
    tracks.back().info.bitDepth = 24;
    tracks.back().info.year = u"2020"_s;
    tracks.back().bytes = 1000;
    tracks[2].bytes = tracks[3].bytes = 10;
    return tracks;
}

void append(Browsing &browsing, Side side, std::vector<Track> tracks)
{
    const LibraryContents base = browsing.contents(side);
    ASSERT_TRUE(browsing.land(side, base, base.prepared(std::make_shared<const std::vector<Track>>(std::move(tracks)))));
}

/// The lists by their definition.
std::vector<Album> simpleAlbums(const Browsing &browsing)
{
    std::vector<Album> albums = AlbumGrouping::albums(browsing.activeTracks());
    std::erase_if(albums, [&](const Album &album) {
        return std::ranges::none_of(album.tracks, [&](const Track &track) { return browsing.matches(track); });
    });
    const auto year = [](const Album &album) { return album.tracks.front().info.year; };
    std::ranges::stable_sort(albums, [&, mode = browsing.sortMode()](const Album &a, const Album &b) {
        return mode == u"Rok"_s    ? year(b) < year(a)
            : mode == u"Rozmiar"_s ? b.bytes() < a.bytes()
            : mode == u"Album"_s   ? TextOrder::compare(a.title, b.title) < 0
                                   : TextOrder::compare(a.artist + a.title, b.artist + b.title) < 0;
    });
    return albums;
}

TrackPlaces simpleTracks(const Browsing &browsing)
{
    const std::vector<Track> &tracks = browsing.activeTracks();
    TrackPlaces places;
    for (std::uint32_t place = 0; place < tracks.size(); ++place) {
        if (browsing.matches(tracks[place])) {
            places.push_back(place);
        }
    }
    std::ranges::stable_sort(places, [&, mode = browsing.sortMode()](std::uint32_t x, std::uint32_t y) {
        const Track &a = tracks[x];
        const Track &b = tracks[y];
        return mode == u"Rok"_s    ? std::tie(b.info.year, a.title) < std::tie(a.info.year, b.title)
            : mode == u"Rozmiar"_s ? b.bytes < a.bytes
            : mode == u"Album"_s   ? TextOrder::compare(a.album + a.title, b.album + b.title) < 0
                                   : TextOrder::compare(a.artist + a.title, b.artist + b.title) < 0;
    });
    return places;
}

} // namespace

TEST(Browsing, filtersAndSorts)
{
    Browsing browsing;
    append(browsing, Side::Computer, someMusic());
    const std::tuple<const char *, const char *, bool, const char *, const char *> rows[]
        = {{"Album", "Wszystko", false, "", "Double, High 10, Plain"},
            {"Rok", "Wszystko", false, "", "High 10, Double, Plain"},
            {"Rozmiar", "Wszystko", false, "", "High 10, Double, Plain"},
            {"unknown", "Wszystko", false, "", "High 10, Double, Plain"}, {"Rok", "MP3", false, "", "Plain"},
            {"Rok", "Pozostałe", false, "", ""}, {"Rok", "flac", false, "", ""}, {"Rok", "FLAC", true, "", "High 10"},
            {"Rok", "Wszystko", false, "żUK plain", "Plain"}, {"Rok", "Wszystko", false, "2 y", "Plain"}};
    for (const auto &[order, format, highResolution, search, listed] : rows) {
        browsing.setSortMode(QString::fromUtf8(order));
        browsing.setFormatFilter(QString::fromUtf8(format));
        browsing.setHiResOnly(highResolution);
        browsing.setSearch(QString::fromUtf8(search));
        EXPECT_EQ(titles(browsing), QString::fromUtf8(listed));
    }
    EXPECT_EQ(browsing.albums()->front()->tracks.size(), 2U); // the album keeps what does not match
    EXPECT_EQ(browsing.filteredTracks()->size(), 1U);
    AudioInfo info;
    info.bitDepth = 16;
    for (const int rate : {48000, 48001}) {
        info.sampleRate = rate;
        EXPECT_EQ(isHighResolution(info), rate > 48000);
    }
    std::vector<Track> many;
    while (many.size() < 3000) { // they stay in the order before until a job has made another
        const std::vector<Track> more = someMusic();
        many.insert(many.end(), more.begin(), more.end());
    }
    append(browsing, Side::Computer, std::move(many));
    const std::shared_ptr<const LibraryIndex> before = browsing.index();
    TextOrder::setLanguage(TextOrder::Language::English);
    EXPECT_TRUE(!browsing.albums()->empty() && browsing.index() == before && !browsing.isReady(Side::Computer));
    TextOrder::setLanguage(TextOrder::Language::Polish);
}

TEST(Browsing, listsAlwaysWhatAFreshComputationWouldGive)
{
    QRandomGenerator random(20261122);
    Browsing browsing;
    const auto text = [&](std::initializer_list<const char *> list) {
        return QString::fromUtf8(list.begin()[random.bounded(int(list.size()))]);
    };
    const auto side = [&] { return random.bounded(2) == 1 ? Side::Device : Side::Computer; };
    const auto idsOf = [](const Album &album) {
        QSet<QUuid> ids;
        for (const Track &track : album.tracks) {
            ids.insert(track.id);
        }
        return ids;
    };
    const std::vector<std::function<void()>> changes {
        [&] { browsing.setSearch(text({"", "", "", "a", "x"})); },
        [&] { browsing.setFormatFilter(text({"Wszystko", "Wszystko", "FLAC", "Pozostałe"})); },
        [&] { browsing.setHiResOnly(random.bounded(4) == 1); },
        [&] { browsing.setSortMode(text({"Album", "Rok", "Rozmiar", "Wykonawca"})); },
        [&] { browsing.setSide(side()); },
        [&] { TextOrder::setLanguage(TextOrder::Language(random.bounded(2))); },
        [&] { append(browsing, side(), someMusic()); },
        [&] { // as a job does it, sometimes too late
            const Side of = side();
            const LibraryContents base = browsing.contents(of);
            const std::size_t count = base.tracks->size();
            const LibraryContents made = base.prepared(std::make_shared<const std::vector<Track>>(someMusic()));
            const bool isLate = random.bounded(3) == 0;
            if (isLate) {
                append(browsing, of, someMusic());
            }
            EXPECT_EQ(browsing.land(of, base, made), !isLate);
            EXPECT_EQ(base.tracks->size(), count);
        },
        [&] { browsing.clearDevice(); },
        [&] {
            if (!browsing.everyAlbum().empty()) {
                browsing.remove(
                    idsOf(*browsing.everyAlbum()[std::size_t(random.bounded(int(browsing.everyAlbum().size())))]));
            }
        },
        [&] { browsing.remove({browsing.activeTracks().empty() ? QUuid() : browsing.activeTracks().front().id}); },
        [&] {
            if (const Side of = side(); !browsing.everyAlbum(of).empty()) {
                const QSet<QUuid> ids = idsOf(*browsing.everyAlbum(of).back());
                browsing.setArtwork(of, ids, QByteArray::number(random.bounded(1000)));
            }
        },
    };
    int nonEmpty = 0;
    for (int step = 0; step < 600; ++step) {
        changes[std::size_t(random.bounded(int(changes.size())))]();
        const auto isSame = [](const auto &a, const auto &b) { return *a == b; };
        ASSERT_TRUE(std::ranges::equal(browsing.everyAlbum(), AlbumGrouping::albums(browsing.activeTracks()), isSame))
            << step;
        ASSERT_TRUE(std::ranges::equal(*browsing.albums(), simpleAlbums(browsing), isSame)) << step;
        ASSERT_EQ(*browsing.filteredTracks(), simpleTracks(browsing)) << step;
        const TrackMatches &matches = *browsing.trackMatches();
        ASSERT_EQ(matches.count, browsing.filteredTracks()->size()) << step;
        bool highResolution = false;
        for (std::uint32_t place = 0; place < matches.places.size(); ++place) {
            const Track &track = browsing.activeTracks()[place];
            const std::shared_ptr<const Album> album = browsing.albumWith(track.id);
            ASSERT_EQ(matches.places[place], browsing.matches(track)) << step;
            ASSERT_TRUE(std::ranges::count(album->tracks, track) == 1
                && browsing.albumOf(browsing.side(), album->id()) == album)
                << step;
            highResolution = highResolution || (matches.places[place] && isHighResolution(track.info));
        }
        ASSERT_EQ(matches.highResolution, highResolution) << step;
        nonEmpty += browsing.albums()->size() > 1 ? 1 : 0;
    }
    EXPECT_GT(nonEmpty, 60);
    TextOrder::setLanguage(TextOrder::Language::Polish);
}
