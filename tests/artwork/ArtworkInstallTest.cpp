#include "artwork/ArtworkInstall.h"

#include "support/Testing.h"

#include <sys/stat.h>

#include <sstream>

namespace {

using FileMap = std::map<std::string, std::string>;
using Paths = std::vector<fs::path>;

/// An album in a folder of its own, with an old cover, and in a folder that it shares; and the computer's folder.
struct CoverDesk {
    TemporaryFolder folder;
    fs::path root = folder / "IPOD";
    fs::path music = root / "Music";
    Paths tracks {music / "CD1/1.flac", music / "CD1/2.flac", music / "CD2/a.mp3"};
    FileMap before {{"CD1/1.flac", ""}, {"CD1/2.flac", ""}, {"CD1/cover.jpeg", "old"}, {"CD1/1.jpeg", "old"},
        {"CD1/2.jpeg", "own"}, {"CD1/._cover.jpeg", std::string("\0\5\x16\7", 4)}, {"CD2/a.mp3", ""},
        {"CD2/foreign.ogg", ""}, {"CD2/cover.jpeg", "theirs"}};

    CoverDesk()
    {
        makeDevice(folder, "IPOD");
        for (const auto &[name, bytes] : before) {
            folder.write(music / name, bytes);
        }
    }
    std::string install() const
    {
        return failureOf([&] { Artwork::install("new", tracks, Storage::DeviceAnchor(root), folder / "Backups"); });
    }
};

Paths words(const std::string &text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace

TEST(ArtworkInstall, plansACoverForAnOwnFolderAndImagesForASharedOne)
{
    struct Row {
        std::string disk, tracks, targets, stale;
        Volumes::NameRules rules = Volumes::NameRules::Posix;
    };
    const Row rows[] = {
        {"/A/1.mp3 /A/2.MP3 /A/._3.mp3 /A/3.txt /A/1.jpeg=own /B/1.mp3 /B/3.Flac /B/1.jpeg=new",
            "/A/1.mp3 /A/2.MP3 /B/1.mp3 /B/2.mp3", "/A/cover.jpeg /B/1.jpeg /B/2.jpeg", ""},
        {"/A/cover.jpeg=old /A/1.jpeg=old /A/2.jpeg=new /A/3.jpeg=own", "/A/1.mp3 /A/2.mp3 /A/3.mp3 /A/1.ogg /A/4.mp3",
            "/A/cover.jpeg", "/A/1.jpeg /A/2.jpeg"},
        {"/A/cover.jpeg=old", "/A/cover.mp3", "/A/cover.jpeg", ""}, // the track's image is the folder's
        {"/A/ŻÓŁW.mp3 /A/2.mp3 /A/COVER.jpeg=new", "/A/żółw.mp3 /a/2.MP3 /A/COVER.mp3", "/A/cover.jpeg", "",
            Volumes::NameRules::Fat},
        {"/A/ŻÓŁW.mp3", "/A/żółw.mp3", "/A/żółw.jpeg", ""},
    };
    for (const Row &row : rows) {
        const auto items = [&](const fs::path &folder) {
            Paths result = words(row.disk);
            std::erase_if(result, [&](const auto &item) { return item.parent_path() != folder; });
            return result;
        };
        const auto content = [&](const fs::path &file) {
            const auto found = row.disk.find(file.string() + '=');
            const bool isThere = found != std::string::npos;
            return isThere ? std::optional(QByteArray(&row.disk[found] + file.string().size() + 1, 3)) : std::nullopt;
        };
        const Artwork::InstallPlan expected {words(row.targets), words(row.stale)};
        EXPECT_EQ(Artwork::planInstall("new", words(row.tracks), row.rules, {items, content}), expected) << row.disk;
    }
}

TEST(ArtworkInstall, changesNothingBehindALinkOrOutsideTheDeviceOrUnsaved)
{
    // A link below Music, where it leads, and a track of the album.
    const char *rows[][3] = {{"CD1/cover.jpeg", "2.jpeg", "CD1/1.flac"}, {"CD3", "CD2", "CD3/a.mp3"},
        {"CD3", "../..", "CD3/IPOD 2/b.mp3"}, {"CD2/a.jpeg", "nowhere", "CD2/a.mp3"}, {"x", "y", "../../IPOD 2/b.mp3"}};
    for (const auto &[link, target, track] : rows) {
        CoverDesk desk;
        desk.folder.write("IPOD 2/b.mp3", "");
        fs::remove(desk.music / link);
        fs::create_symlink(target, desk.music / link);
        desk.tracks.push_back(desk.music / track);
        const FileMap planted = filesBelow(desk.folder.path());
        EXPECT_EQ(desk.install(), "Okładka musi być zapisana w folderze muzyki na wybranym iPodzie.") << track;
        EXPECT_EQ(filesBelow(desk.folder.path()), planted) << track;
    }
    CoverDesk desk;
    ASSERT_EQ(::mkfifo((desk.music / "CD2/a.jpeg").c_str(), 0600), 0); // cannot be saved
    EXPECT_NE(desk.install(), "");
    EXPECT_EQ(filesBelow(desk.music), desk.before);
    fs::remove(desk.music / "CD2/a.jpeg");
    EXPECT_EQ(desk.install(), "");
    FileMap after = desk.before;
    after["CD1/cover.jpeg"] = after["CD2/a.jpeg"] = "new";
    after.erase("CD1/1.jpeg");
    after.erase("CD1/._cover.jpeg");
    EXPECT_EQ(filesBelow(desk.music), after);
    desk.tracks.clear();
    EXPECT_EQ(desk.install(), "Album nie ma utworów.");
}
