#include "library/AlbumGrouping.h"

#include "support/SampleTracks.h"
#include "support/Testing.h"

#include <algorithm>

namespace {

/// The albums that the tracks make, in order: title, artist and the tracks' titles.
std::string shown(const std::vector<TrackText> &texts)
{
    QStringList albums;
    for (const Album &album : AlbumGrouping::albums(makeTracks(texts))) {
        QStringList words {album.title, album.artist};
        for (const Track &track : album.tracks) {
            words.append(track.title);
        }
        albums.append(words.join(u' '));
    }
    return albums.join(u"; "_s).toStdString();
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
    EXPECT_EQ(AlbumGrouping::cleanedAlbum(blanks + u'7'), u"7"_s);
}

TEST(AlbumGrouping, joinsDiscsByFoldersAndTagsAndSortsTheirTracks)
{
    const TrackText first {"R/One/a", "X", "B", 1};
    const std::pair<std::vector<TrackText>, const char *> rows[] = {{{}, ""},
        // Disc folders, whatever the tags say.
        {{{"R/CD2/2", "Al (CD 2)", "Y", 1}, {"R/CD1/1", "Al (CD 1)", "X", 1}}, "Al Różni wykonawcy 1 2"},
        {{{"R/CD2/2", "Al CD2", "Y", 1}, {"R/CD1/1", "Al", "X", 1}}, "Al Różni wykonawcy 1 2"},
        {{{"R/CD2/2", "A", "Y", 1}, {"R/CD1/1", "B", "X", 1}}, "R Różni wykonawcy 1 2"},
        {{{"R/CD2/2", "CD2 Live", "Y", 1}, {"R/CD1/1", "CD1 Live", "Y", 1}}, "R Y 1 2"},
        {{{"R/CD2/2", "", "Y", 1}, {"R/CD1/1", "", "Y", 1}}, "R Y 1 2"},
        // Sibling folders by their disc tags, also of disc folders that carry numbers.
        {{first, {"R/Two/b", "x (CD 2)", "b", 2}}, "R Różni wykonawcy a b"}, // "X" and "x" are two titles
        {{first, {"R/Two/b", "X", "B", 1}}, "X B a; X B b"}, {{first, {"R/Two/b", "X", "B", 0}}, "X B a; X B b"},
        {{first, {"S/Two/b", "X", "B", 2}}, "X B a; X B b"}, {{first, {"R/Two/b", "X", "C", 2}}, "X B a; X C b"},
        {{first, {"R/Two/b", "Y", "B", 2}}, "X B a; Y B b"}, {{first, {"R/One/b", "X", "B", 2}}, "X B a b"},
        {{{"R/CD1/1", "X", "B", 1}, {"R/CD2/2", "X", "B", 2}, {"R/CD3/3", "X", "B"}}, "X B 1 2; X B 3"},
        // A plain folder by its tags, which are equal without case and by canonical equivalence.
        {{{"B/F/1", "Album", "A"}, {"B/F/2", "ALBUM (CD 1)", "a"}, {"B/F/3", "Other", "A"}, {"B/E/4", "Album", "A"}},
            "B Różni wykonawcy 1 2; Other A 3; Album A 4"},
        {{{"B/F/1", "CD 1"}}, "F Band 1"},
        {{{"B/F/1", "Z\u0307ar", "Z\u0307"}, {"B/F/2", "\u017Bar", "\u017B"}}, "Z\u0307ar Z\u0307 1 2"},
        // By disc, where none is the first, number and name.
        {{{"B/F/10", "A", "B", 1, 1}, {"B/F/2", "A", "B", 0, 1}, {"B/F/z", "A", "B", 2, 1}, {"B/F/b", "A", "B", 1, 0}},
            "A B b 2 10 z"}};
    for (const auto &[tracks, albums] : rows) {
        EXPECT_EQ(shown(tracks), albums);
    }
    const auto key = [](const std::vector<TrackText> &texts) {
        return AlbumGrouping::albums(makeTracks(texts)).at(0).groupID->replace(QChar(u'\0'), u'|');
    };
    const Album album {.artist = u"A"_s, .title = u"T"_s, .tracks = makeTracks({{"a.mp3"}}), .groupID = {}};
    EXPECT_EQ(album.id().replace(QChar(u'\0'), u'|'), u"A|T|/music"_s);
    EXPECT_EQ(key(rows[1].first), u"release|/music/R"_s);
    EXPECT_EQ(key(rows[6].first), u"tagged|/music/R|b|x"_s);
}
