#include "library/AlbumGrouping.h"

#include "support/Messages.h"
#include "support/SampleTracks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

std::vector<Album> group(const std::vector<TrackText> &texts)
{
    return AlbumGrouping::albums(makeTracks(texts));
}

std::string discs(const Album &album)
{
    std::string result;
    for (const AlbumDisc &disc : album.discs()) {
        result += std::to_string(disc.number) + " ";
    }
    return result;
}

} // namespace

TEST(FolderDisc, readsTheNumberOfADiscFolder)
{
    const std::pair<const char *, std::optional<std::int64_t>> rows[]
        = {{"CD1", 1}, {"cd 2", 2}, {"Disc-3", 3}, {"disk_04", 4}, {"Płyta 2", 2}, {"PŁYTA 10", 10}, {"CD2_bonus", 2},
            {"Disc 1 - Live", 1}, {"CD0", 0}, {"CD. 7", 7}, {"CD-2-", 2}, {"CD1Bonus", {}}, {"Discography", {}},
            {"CD", {}}, {"Discs 2", {}}, {"My CD1", {}}, {"", {}}, {"CD9223372036854775807", INT64_MAX},
            {"CD9223372036854775808", {}}, {"Plyta 2", {}}, {"cd\u00A03", 3}};
    for (const auto &[name, number] : rows) {
        EXPECT_EQ(AlbumGrouping::folderDisc(QString::fromUtf8(name)), number) << name;
    }
}

TEST(CleanedAlbum, dropsTheDiscSuffix)
{
    const std::pair<const char *, const char *> rows[] = {{"Album - CD 1", "Album"}, {"Album [Disc 2 of 3]", "Album"},
        {"Album (disk2/2)", "Album"}, {"Album: CD3", "Album"}, {"Album – cd 4 ", "Album"}, {"Album CD1\n", "Album"},
        {"CD 1", ""}, {"Album CD 1 Live", "Album CD 1 Live"}, {"  Album  ", "Album"}, {"Album 2", "Album 2"},
        {"Płyta 2", "Płyta 2"}, {"ABCD3", "AB"}, {"Abba (1975)", "Abba (1975)"}, {"", ""}, {"])", "])"}};
    for (const auto &[album, cleaned] : rows) {
        EXPECT_EQ(AlbumGrouping::cleanedAlbum(QString::fromUtf8(album)).toStdString(), cleaned) << album;
    }
    // Hostile tags: quadratic in a plain match.
    const QString blanks(2'000'000, u' ');
    EXPECT_EQ(AlbumGrouping::cleanedAlbum(u'A' + blanks + u'x').size(), blanks.size() + 2);
    EXPECT_EQ(AlbumGrouping::cleanedAlbum(blanks + u'7'), QStringLiteral("7"));
}

TEST(AlbumGrouping, joinsDiscFoldersWhateverTheTagsSay)
{
    EXPECT_TRUE(group({}).empty());
    const std::array<const char *, 3> rows[] = {{"Album (CD 1)", "Album (CD 2)", "Album"},
        {"Album CD1", "Album", "Album"}, {"A", "B", "Release"}, {"CD1", "CD2", "Release"}, {"", "", "Release"}};
    for (const auto &[first, second, title] : rows) {
        const std::vector<Album> albums
            = group({{"Band/Release/CD2/01.flac", second, "Y", 1}, {"Band/Release/CD1/01.flac", first, "X", 1}});
        ASSERT_EQ(albums.size(), 1U) << first;
        EXPECT_EQ(albums[0].title.toStdString(), title) << first;
        EXPECT_EQ(albums[0].artist, QStringLiteral("Różni wykonawcy"));
        EXPECT_EQ(albums[0].groupID, QStringLiteral("release") + QChar(u'\0') + QStringLiteral("/music/Band/Release"));
        EXPECT_EQ(discs(albums[0]), "1 2 ");
        EXPECT_EQ(albums[0].tracks[0].url, "/music/Band/Release/CD1/01.flac");
    }
}

TEST(AlbumGrouping, joinsSiblingFoldersByTheirDiscTags)
{
    const TrackText first {"R/One/a.flac", "X", "B", 1};
    const std::tuple<const char *, TrackText, std::size_t> rows[] = {
        {"two discs", {"R/Two/b.flac", "x (CD 2)", "b", 2}, 1},
        {"one folder", {"R/One/b.flac", "X", "B", 2}, 1},
        {"the same disc twice", {"R/Two/b.flac", "X", "B", 1}, 2},
        {"a disc without a number", {"R/Two/b.flac", "X", "B", 0}, 2},
        {"other parents", {"S/Two/b.flac", "X", "B", 2}, 2},
        {"other artists", {"R/Two/b.flac", "X", "C", 2}, 2},
        {"other albums", {"R/Two/b.flac", "Y", "B", 2}, 2},
    };
    for (const auto &[what, second, albums] : rows) {
        EXPECT_EQ(group({first, second}).size(), albums) << what;
    }
    const Album joined = group({first, std::get<TrackText>(rows[0])}).front();
    const QString key = QStringLiteral("tagged|/music/R|b|x");
    EXPECT_EQ(joined.groupID, QString(key).replace(u'|', QChar(u'\0')));
    EXPECT_EQ(discs(joined), "1 2 ");
    EXPECT_EQ(joined.title, QStringLiteral("R")); // "X" and "x" are two titles
    // The tagged form takes disc folders over too, when they carry numbers.
    EXPECT_EQ(
        group({{"R/CD1/a.flac", "X", "B", 1}, {"R/CD2/b.flac", "X", "B", 2}, {"R/CD3/c.flac", "X", "B"}}).size(), 2U);
}

TEST(AlbumGrouping, groupsAPlainFolderByItsTags)
{
    const std::vector<Album> albums
        = group({{"Band/Folder/1.mp3", "Album", "A"}, {"Band/Folder/2.mp3", "ALBUM (CD 1)", "a"},
            {"Band/Folder/3.mp3", "Other", "A"}, {"Band/Else/1.mp3", "Album", "A"}});
    ASSERT_EQ(albums.size(), 3U);
    EXPECT_EQ(albums[0].tracks.size(), 2U);
    EXPECT_EQ(albums[0].artist, QStringLiteral("Różni wykonawcy")); // "A" and "a"
    EXPECT_EQ(albums[0].title, QStringLiteral("Band")); // titles that differ only in case: the grandparent's name
    EXPECT_EQ(albums[1].title, QStringLiteral("Other"));
    EXPECT_EQ(group({{"Band/Folder/1.mp3", "CD 1"}})[0].title, QStringLiteral("Folder"));
    // Texts are equal by canonical equivalence.
    const std::vector<Album> equal
        = group({{"B/F/1.mp3", "Z\u0307ar", "Z\u0307"}, {"B/F/2.mp3", "\u017Bar", "\u017B"}});
    ASSERT_EQ(equal.size(), 1U);
    EXPECT_EQ(equal[0].title, QStringLiteral("Z\u0307ar"));
}

TEST(AlbumGrouping, sortsByDiscTrackAndName)
{
    const std::vector<Album> albums = group({{"B/F/10.flac", "A", "B", 1, 1}, {"B/F/2.flac", "A", "B", 0, 1},
        {"B/F/z.flac", "A", "B", 2, 1}, {"B/F/b.flac", "A", "B", 1, 0}, {"B/F/B.flac", "A", "B", 1, 0}});
    ASSERT_EQ(albums.size(), 1U);
    QStringList names;
    for (const Track &track : albums[0].tracks) {
        names.append(track.title);
    }
    EXPECT_EQ(names.join(u' '), QStringLiteral("b B 2 10 z"));
    EXPECT_EQ(discs(albums[0]), "1 2 ");
}

TEST(AlbumGrouping, keepsEveryTrackOnceAndAgreesWithDescribe)
{
    std::vector<Track> tracks;
    for (const char *file :
        {"R/CD1/a.mp3", "R/CD2/b.mp3", "R/One/c.mp3", "R/Two/d.mp3", "S/e.mp3", "f.mp3", "CD1/g.mp3"}) {
        for (const char *album : {"X", "x (CD 2)", ""}) {
            for (int disc = 0; disc < 3; ++disc) {
                tracks.push_back(makeTrack({file, album, "B", disc, disc}));
            }
        }
    }
    const std::vector<Album> albums = AlbumGrouping::albums(tracks);
    std::size_t count = 0;
    for (const Album &album : albums) {
        count += album.tracks.size();
        EXPECT_FALSE(album.title.isEmpty());
        for (const Track &track : album.tracks) {
            EXPECT_TRUE(album.groupID->startsWith(QStringLiteral("tagged"))
                || AlbumGrouping::describe(track).key == album.groupID);
        }
    }
    EXPECT_EQ(count, tracks.size());
    // The order of the input does not change what belongs together.
    std::reverse(tracks.begin(), tracks.end());
    EXPECT_EQ(AlbumGrouping::albums(tracks).size(), albums.size());
}
