#include "library/TrackReader.h"
#include "library/LibraryScan.h"

#include "platform/files/Files.h"

#include "support/FlacBytes.h"
#include "support/Testing.h"

#include <set>

namespace {

std::string flac(const std::vector<std::string> &comments, const char *picture = nullptr)
{
    return "fLaC" + FlacBytes::block(4, FlacBytes::comments(comments))
        + (picture ? FlacBytes::block(6, FlacBytes::picture(3, picture)) : "") + FlacBytes::block(1, "", true);
}

const QByteArray held("held");

std::vector<Track> read(const fs::path &place, const QMap<QString, QString> &overrides = {})
{
    return readTracks({.urls = {place}, .known = {}, .artworkOverrides = overrides, .artwork = {held}}, [](int, int) {
    }).tracks;
}

std::set<std::string> namesBelow(const fs::path &folder, const std::vector<fs::path> &paths)
{
    std::set<std::string> names;
    for (const fs::path &path : paths) {
        EXPECT_TRUE(names.insert(path.lexically_relative(folder).string()).second) << path;
    }
    return names;
}

} // namespace

TEST(ScanAudio, findsMusicAtAnyDepthAndFollowsNoLink)
{
    const TemporaryFolder folder;
    const std::set<std::string> music {"a.mp3", "b.FLAC", "Deep/er/c.Opus", "d.m4a", "e.aac", "f.ogg", "g.wav",
        "h.aiff", "i.aif", "j.alac", "k.ape", "l.wv", "m.mpc"};
    for (const std::string &name : music) {
        folder.write("Music/" + name, "x");
    }
    for (const char *name : {"Music/cover.jpg", "Music/.hidden.mp3", "Music/.folder/n.mp3", "Music/mp3",
             "Music/o.mp3.part", "Elsewhere/p.mp3", "Music/folder.mp3/inside.txt"}) {
        folder.write(name, "x");
    }
    fs::create_symlink(folder / "Elsewhere/p.mp3", folder / "Music/link.mp3");
    fs::create_directory_symlink(folder / "Elsewhere", folder / "Music/link");
    fs::create_directory_symlink(folder / "Music", folder / "rootlink");
    EXPECT_EQ(namesBelow(folder / "Music", scanAudio({folder / "Music/"})), music);
    for (const char *name : {"rootlink", "rootlink/", "Music/link.mp3", "Music/.folder", "Music/.folder/", "missing"}) {
        EXPECT_TRUE(scanAudio({folder / name}).empty()) << name;
    }
}

TEST(ScanAudio, passesOverFoldersOfTheDeviceThatHoldNoMusic)
{
    const TemporaryFolder folder;
    for (const char *name : {"Music/x", "Podcasts/x", "Notes/x", "Calendars/x", "Contacts/x", "Photos/x", "Android/x",
             "LOST.DIR/x", "System Volume Information/x", ".rockbox/x", "file.mp3", "notes/x"}) {
        folder.write(name, "x");
    }
    EXPECT_EQ(namesBelow(folder.path(), deviceMusicFolders(folder.path())),
        (std::set<std::string> {"Music", "Podcasts", "notes"}));
    EXPECT_TRUE(deviceMusicFolders(folder / "missing").empty());
}

TEST(TrackReader, fillsInWhatTagsDoNotSay)
{
    const TemporaryFolder folder;
    const std::tuple<const char *, std::string, const char *, int> rows[]
        = {{"Artist/Album/01 Song.mp3", "x", "01 Song, Artist, Album", 1},
            {"Artist/Album/Song.mp3", "x", "Song, Artist, Album", 0},
            {"Artist/Album/CD 2/07 x.ogg", "x", "07 x, Artist, CD 2", 7}, {"A/B/12.34 x.wav", "x", "12.34 x, A, B", 12},
            {"A/B/99999999999999999999.mp3", "x", "99999999999999999999, A, B", 0},
            {"A/B/3 x.flac", flac({"TITLE=T", "ARTIST=Ar", "ALBUM=Al", "TRACKNUMBER=9"}), "T, Ar, Al", 9},
            {"A/B/4 x.flac", flac({"ALBUMARTIST=AA", "ARTIST=Ar", "TRACKNUMBER=0"}), "4 x, AA, B", 4},
            {"A/B/5 x.flac", flac({"TITLE=", "ALBUMARTIST=", "ALBUM="}), "5 x, A, B", 5}};
    for (const auto &[file, bytes, names, number] : rows) {
        const Track track = read(folder.write(file, bytes)).at(0);
        EXPECT_EQ(QStringList({track.title, track.artist, track.album}).join(u", "_s), QString::fromUtf8(names));
        EXPECT_EQ(track.info.trackNumber, number) << file;
        EXPECT_EQ(track.bytes, std::int64_t(bytes.size())) << file;
    }
}

TEST(TrackReader, choosesTheCoverThatStandsNearest)
{
    const TemporaryFolder folder;
    const auto file = folder.write("A/B/1 x.flac", flac({}, "embedded"));
    const auto plain = folder.write("A/B/2 x.flac", flac({}));
    const auto artwork = [&](const fs::path &track, const QMap<QString, QString> &overrides = {}) {
        const Track found = read(track, overrides).at(0);
        EXPECT_EQ(found.hasEmbeddedArt, track == file);
        return found.artwork.value_or("none").toStdString();
    };
    EXPECT_EQ(artwork(plain), "none");
    // Folder covers, each beaten by the next.
    for (const char *name : {"Folder.png", "FOLDER.PNG", "folder.png", "cover.png", "folder.jpg", "cover.bmp",
             "Cover.jpg", "COVER.JPG", "cover.jpg", "cover.jpeg"}) {
        folder.write(fs::path("A/B") / name, name);
        EXPECT_EQ(artwork(plain), name);
    }
    fs::resize_file(folder / "A/B/cover.jpeg", 10'000'000); // too large by one byte
    EXPECT_EQ(artwork(plain), "cover.jpg");
    fs::resize_file(folder / "A/B/cover.jpeg", 9'999'999);
    EXPECT_EQ(artwork(plain).size(), 9'999'999U);
    EXPECT_EQ(artwork(file), "embedded");
    for (const char *name : {"1 X.JPG", "1 x.jpg", "1 x.JPEG", "1 x.jpeg"}) { // its own file's cover
        folder.write(fs::path("A/B") / name, name);
        EXPECT_EQ(artwork(file), name);
    }
    const QString key = overrideKey(u"A"_s, u"B"_s, folder / "A/B");
    EXPECT_EQ(artwork(file, {{key, Files::text(folder.write("chosen.jpg", "chosen"))}}), "chosen");
    EXPECT_EQ(artwork(file, {{key, Files::text(folder / "gone.jpg")}}), "1 x.jpeg");
}

TEST(TrackReader, sharesEqualCovers)
{
    const TemporaryFolder folder;
    for (const auto &[name, cover] :
        {std::pair("A/B/1.flac", "cover"), std::pair("C/D/2.flac", "cover"), std::pair("C/D/3.flac", "held")}) {
        folder.write(name, flac({}, cover));
    }
    const std::vector<Track> tracks = read(folder.path());
    EXPECT_EQ(tracks.at(1).artwork->constData(), tracks.at(0).artwork->constData());
    EXPECT_EQ(tracks.at(1).info.picture->constData(), tracks.at(0).artwork->constData());
    EXPECT_EQ(tracks.at(2).artwork->constData(), held.constData());
}

TEST(ReadTracks, ordersByPathAndReadsEachFileOnce)
{
    const TemporaryFolder folder;
    for (const char *name : {"10.mp3", "2.mp3", "3.mp3", "1.mp3"}) {
        folder.write(name, "x");
    }
    TrackImport import;
    import.urls = {folder.path(), folder / "./2.mp3", folder / "2.mp3"};
    import.known = {(folder / "3.mp3").string()};
    std::string titles;
    for (const Track &track : readTracks(import, [](int, int) { }).tracks) {
        titles += track.title.toStdString() + " ";
    }
    EXPECT_EQ(titles, "1 2 10 ");

    for (int last = 0; last <= 3; ++last) { // it is stopped behind that one
        std::stop_source stop;
        (void)(last == 0 && stop.request_stop());
        const auto count = [&stop, last, done = 0](int, int) mutable { (void)(++done == last && stop.request_stop()); };
        const TracksRead read = readTracks(import, count, stop.get_token());
        EXPECT_EQ(read.tracks.size(), std::size_t(last));
        EXPECT_EQ(read.left, last == 0 ? 0 : 3 - last); // not even looked for
        EXPECT_EQ(read.isStopped, last < 3);
    }
}
