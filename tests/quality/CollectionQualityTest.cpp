// What is found in a collection, and the search for identical files.
#include "quality/CollectionQuality.h"
#include "artwork/Artwork.h"

#include "support/SampleTracks.h"
#include "support/Testing.h"

#include <gmock/gmock.h>
using testing::ElementsAre;

namespace {

struct Library {
    TemporaryFolder folder;
    std::vector<Track> tracks;

    Track &add(const char *path, const std::string &bytes)
    {
        tracks.push_back(makeTrack({.path = path, .album = "Album", .artist = "Band"}));
        tracks.back().url = folder / path;
        tracks.back().bytes = std::int64_t(bytes.size());
        tracks.back().info.tags = {{u"TITLE"_s, u"t"_s}, {u"ARTIST"_s, u"a"_s}, {u"ALBUM"_s, u"b"_s}};
        folder.write(path, bytes);
        return tracks.back();
    }
    void addTrack(const char *path, const std::optional<QByteArray> &cover)
    {
        Track &track = add(path, path);
        track.artwork = cover;
        track.album = QString::fromStdString(track.url.parent_path().filename().string());
    }
    /// "DONE of TOTAL" of each call.
    [[nodiscard]] std::vector<std::string> progress(std::vector<QualityIssue> &found) const
    {
        std::vector<std::string> calls;
        found = CollectionQuality::duplicates(tracks, [&](int done, int total) {
            calls.push_back(std::to_string(done) + " of " + std::to_string(total));
        }).groups;
        return calls;
    }
};

/// "KIND: TITLE, COUNT: DETAIL" of each issue.
std::vector<std::string> texts(const std::vector<QualityIssue> &issues)
{
    std::vector<std::string> result;
    for (const QualityIssue &issue : issues) {
        const QString line = qualityKindText(issue.kind) + u": "_s + issue.title + u", "_s
            + QString::number(issue.tracks.size()) + u": "_s + issue.detail;
        result.push_back(line.simplified().toStdString());
    }
    return result;
}

} // namespace

TEST(Inspection, findsEachAlbumAndTrackOnceInTheOrderOfTheirTitles)
{
    const QByteArray unfit = QByteArray::fromStdString(fileBytes(dataFile("images/plain.png")));
    const QByteArray fit = Artwork::baselineJPEG(unfit);
    Library library;
    for (const char *path : {"Album 10/1.mp3", "Album 10/2.mp3", "album 9/1.mp3", "album 9/2.mp3"}) {
        library.addTrack(path, fit);
    }
    library.folder.write("album 9/1.jpeg", "");
    library.folder.write("Album 10/cover.bmp", ""); // speaks for both tracks
    library.addTrack("Beside/1.mp3", fit);
    library.folder.write("Beside/1.jpg", "");
    library.addTrack("Discs/CD1/1.mp3", fit);
    library.addTrack("Discs/CD2/1.mp3", fit);
    library.folder.write("Discs/CD1/Folder.JPG", ""); // speaks for the first disc alone
    for (const char *other : {"Cover.png", "folder.jpeg", "1.mp3.jpg"}) { // none that Rockbox finds
        library.folder.write(fs::path("Discs/CD2") / other, "");
    }
    library.addTrack("Mixed/1.mp3", unfit); // the first image is judged
    library.addTrack("Mixed/2.mp3", fit);
    library.addTrack("None/1.mp3", std::nullopt);
    library.addTrack("Gone/Gone.mp3", fit);
    fs::remove(library.tracks.back().url);
    library.tracks.back().info.tags.clear();
    library.addTrack("Beside/Untagged 10.mp3", fit);
    library.folder.write("Beside/Untagged 10.bmp", "");
    library.tracks.back().info.tags = {{u"TITLE"_s, u" \t\u00A0\n"_s}, {u"ARTIST"_s, u"a"_s}, {u"ALBUM"_s, u"b"_s}};
    library.addTrack("Beside/untagged 9.mp3", fit);
    library.folder.write("Beside/untagged 9.jpeg", "");
    library.tracks.back().info.tags = {{u"TITLE"_s, u"t"_s}, {u"ALBUMARTIST"_s, u"a"_s}};

    const std::string mixed = "Okładki: Mixed, 2: Obraz wymaga konwersji do JPEG obsługiwanego przez Rockbox.";
    const std::string none = "Okładki: None, 1: Brak odczytanej okładki. Wybierz obraz, aby naprawić album.";
    const std::string gone = "Pliki: Gone, 1: Plik nie jest już dostępny w zapisanej lokalizacji.";
    const std::string nine = "Tagi: untagged 9, 1: Nie odczytano tagów: wykonawca, album. Nazwy w bibliotece mogą "
                             "pochodzić z folderów.";
    const std::string ten
        = "Tagi: Untagged 10, 1: Nie odczytano tagów: tytuł. Nazwy w bibliotece mogą pochodzić z folderów.";
    EXPECT_THAT(
        texts(CollectionQuality::inspect(library.tracks, std::nullopt)), ElementsAre(mixed, none, gone, nine, ten));
    const std::string beside = ": Okładka dostępna w bibliotece, ale brakuje pliku przy części utworów na iPodzie. "
                               "Zapisz wersję dla Rockbox.";
    const auto onDevice = CollectionQuality::inspect(library.tracks, library.folder.path());
    EXPECT_THAT(texts(onDevice),
        ElementsAre("Okładki: album 9, 2" + beside, "Okładki: Discs, 2" + beside, "Okładki: Gone, 1" + beside, mixed,
            none, gone, nine, ten));
    EXPECT_EQ(onDevice.front().id(),
        u"Okładki"_s + QChar(u'\0') + QString::fromStdString((library.folder / "album 9/1.mp3").string()) + QChar(u'\0')
            + QString::fromStdString((library.folder / "album 9/2.mp3").string()));
    EXPECT_TRUE(CollectionQuality::inspect({}, std::nullopt).empty());
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_TRUE(CollectionQuality::inspect(library.tracks, std::nullopt, stopped.get_token()).empty());
}

TEST(Duplicates, areFilesOfTheSameBytesAndNotOtherNamesOfOne)
{
    Library library;
    const std::string content(1'000'000, 'a');
    library.add("c.mp3", content);
    library.add("other.mp3", std::string(1'000'000, 'b'));
    library.add("b.mp3", "small");
    for (const char *name : {"d.mp3", "e.mp3"}) {
        library.add(name, content);
    }
    library.add("a.mp3", "small");
    library.add("changed.mp3", "12345").bytes = 1'000'000; // since it was listed
    library.tracks.push_back(library.tracks.front());
    library.tracks.back().url = library.folder / "x/../c.mp3";
    for (const char *name : {"link.mp3", "hard link.mp3"}) {
        library.tracks.push_back(library.tracks.front());
        library.tracks.back().url = library.folder / name;
    }
    fs::create_symlink(library.folder / "c.mp3", library.folder / "link.mp3");
    fs::create_hard_link(library.folder / "c.mp3", library.folder / "hard link.mp3");
    std::vector<QualityIssue> found;
    const std::vector<std::string> calls = library.progress(found);
    EXPECT_THAT(texts(found),
        ElementsAre(
            "Duplikaty: 2 identyczne pliki · b, 2: Zgodne bajt w bajt (SHA-256). Zajętość dodatkowych kopii: 5 B.",
            "Duplikaty: 3 identyczne pliki · c, 3: Zgodne bajt w bajt (SHA-256). Zajętość dodatkowych kopii: 2,0 MB."));
    ASSERT_EQ(calls.size(), 10U); // also for names that were seen
    EXPECT_EQ(calls.front() + ", " + calls.back(), "1 of 10, 10 of 10");
}

TEST(Duplicates, openOnlyFilesOfOneSizeAndTellOfTheFirstThatFails)
{
    Library library;
    library.add("unique.mp3", "1");
    for (const char *name : {"empty 1.mp3", "empty 2.mp3"}) {
        library.add(name, "");
    }
    for (const Track &track : library.tracks) {
        fs::remove(track.url); // to open one of them would fail
    }
    std::vector<QualityIssue> found;
    EXPECT_TRUE(library.progress(found).empty());
    EXPECT_TRUE(found.empty());

    for (const char *name : {"a.mp3", "b.mp3", "vanished.mp3"}) {
        library.add(name, "same");
    }
    fs::remove(library.folder / "vanished.mp3");
    for (const std::errc reason : {std::errc::no_such_file_or_directory, std::errc::is_a_directory}) {
        try {
            (void)library.progress(found);
            ADD_FAILURE() << "a part of the list passed for all of it";
        } catch (const fs::filesystem_error &failure) {
            EXPECT_EQ(failure.code(), reason);
            EXPECT_EQ(failure.path1(), library.folder / "vanished.mp3");
        }
        fs::create_directories(library.folder / "vanished.mp3");
    }
    std::stop_source stop;
    const auto stopAtTheSecond = [&](int done, int) { done == 2 ? (void)stop.request_stop() : (void)0; };
    const auto part = CollectionQuality::duplicates(library.tracks, stopAtTheSecond, stop.get_token());
    EXPECT_TRUE(part.groups.size() == 1 && part.compared == 2 && !part.isComplete());
}
