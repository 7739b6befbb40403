#include "storage/Transfer.h"

#include "platform/volumes/Volumes.h"

#include "support/Testing.h"

#include <sys/stat.h>

namespace {

using FileMap = std::map<std::string, std::string>;

/// A device and a computer's music folder side by side.
struct Desk {
    TemporaryFolder folder;
    fs::path root = folder / "IPOD";

    Desk() { makeDevice(folder, "IPOD"); }

    TransferFile file(const std::string &name, std::string_view bytes, const char *artist = "Artist",
        const char *album = "Album", const char *disc = nullptr) const
    {
        return {folder.write("Computer/" + name, bytes), QString::fromUtf8(artist), QString::fromUtf8(album),
            disc ? std::optional(QString::fromUtf8(disc)) : std::nullopt};
    }

    TransferResult transfer(const std::vector<TransferFile> &files) const
    {
        int calls = 0;
        TransferResult result = Storage::transfer(files, Storage::DeviceAnchor(root), [&](int done, int total) {
            EXPECT_EQ(done, ++calls);
            EXPECT_EQ(std::size_t(total), files.size());
        });
        EXPECT_EQ(std::size_t(calls), files.size());
        return result;
    }

    std::string message(const std::vector<TransferFile> &files) const
    {
        return failureOf([&] { (void)Storage::transfer(files, Storage::DeviceAnchor(root), [](int, int) { }); });
    }

    FileMap music() const { return fs::exists(root / "Music") ? filesBelow(root / "Music") : FileMap {}; }
};

} // namespace

TEST(Transfer, putsEachFileWhereItsNamesSay)
{
    const Desk desk;
    const std::string stem(170, 'x');
    const TransferResult result = desk.transfer({
        desk.file("a.flac", "1", "AC/DC", ""),
        desk.file("b.flac", "2", "Żółw", "Dwie płyty", "CD 2"),
        desk.file("Co? Gdzie*.mp3", "3", " .. ", "x:y", "a/b"),
        desk.file("1/" + stem + ".flac", "4"),
        desk.file("2/" + stem + ".flac", "5"),
    });
    const std::string cut(160, 'x'); // only a numbered name keeps its extension
    EXPECT_EQ(desk.music(),
        (FileMap {{"AC-DC/Bez nazwy/a.flac", "1"}, {"Żółw/Dwie płyty/CD 2/b.flac", "2"},
            {"Bez nazwy/x-y/a-b/Co? Gdzie*.mp3", "3"}, {"Artist/Album/" + cut, "4"},
            {"Artist/Album/" + cut + " (2).flac", "5"}}));
    EXPECT_EQ(result.copied, 5);
    EXPECT_EQ(result.destinations.at(1), desk.root / "Music/Żółw/Dwie płyty/CD 2/b.flac");
}

TEST(Transfer, knowsAFileByItsContentAndNumbersTheOthers)
{
    const Desk desk;
    const std::vector<TransferFile> files {desk.file("1/Utwór.flac", "one"), desk.file("2/Utwór.flac", "two"),
        desk.file("1/Utwór.flac", "one"), desk.file("3/Utwór.flac", "three"), desk.file("4/bez", "x"),
        desk.file("5/bez", "y")};
    const FileMap expected {{"Artist/Album/Utwór.flac", "one"}, {"Artist/Album/Utwór (2).flac", "two"},
        {"Artist/Album/Utwór (3).flac", "three"}, {"Artist/Album/bez", "x"}, {"Artist/Album/bez (2).", "y"}};
    std::vector<fs::path> destinations;
    for (const int copied : {5, 0}) {
        const TransferResult result = desk.transfer(files);
        EXPECT_EQ(desk.music(), expected);
        EXPECT_EQ(result.copied, copied);
        EXPECT_EQ(result.skipped, 6 - copied);
        EXPECT_EQ(result.destinations.at(2), result.destinations.at(0));
        EXPECT_TRUE(copied > 0 || result.destinations == destinations);
        destinations = result.destinations;
    }
}

TEST(Transfer, refusesBeforeTheFirstByte)
{
    const Desk desk;
    const TransferFile good = desk.file("a.flac", "1");
    TransferFile missing = good;
    missing.source = desk.folder / "Computer/missing.flac";
    TransferFile pipe = good;
    pipe.source = desk.folder / "Computer/pipe.flac";
    ASSERT_EQ(::mkfifo(pipe.source.c_str(), 0600), 0);
    const TransferFile huge = desk.file("huge.flac", ""); // as large as the disk, but sparse
    fs::resize_file(huge.source, std::uintmax_t(Volumes::capacity(desk.root).total));
    EXPECT_EQ(desk.message({}), "");
    EXPECT_NE(desk.message({good, missing}), "");
    EXPECT_NE(desk.message({good, pipe}), "");
    EXPECT_EQ(desk.message({good, huge}), "Za mało wolnego miejsca na cały transfer.");
    const TemporaryFolder memory("/dev/shm"); // other disks have no such files
    TransferFile endless = good;
    endless.source = memory.write("endless.flac", "");
    fs::resize_file(endless.source, std::numeric_limits<std::int64_t>::max());
    TransferFile link = good; // ends the run should it begin
    link.source = memory / "link.flac";
    fs::create_symlink(good.source, link.source);
    EXPECT_EQ(desk.message({link, endless, endless}), "Za mało wolnego miejsca na cały transfer.");
    fs::remove_all(desk.root / ".rockbox");
    EXPECT_EQ(desk.message({good}), "Ten folder nie zawiera katalogu .rockbox.");
    EXPECT_FALSE(fs::exists(desk.root / "Music"));
}

TEST(Transfer, followsNoLink)
{
    const Desk desk;
    const TransferFile first = desk.file("first.flac", "1", "First");
    const TransferFile file = desk.file("a.flac", "new");

    TransferFile link = file;
    link.source = desk.folder / "Computer/link.flac";
    fs::create_symlink("a.flac", link.source);
    EXPECT_EQ(desk.message({first, link}), "Import dowiązań nie jest obsługiwany.");

    fs::create_directories(desk.root / "Music/Artist/Album");
    const auto planted = desk.root / "Music/Artist/Album/a.flac";
    desk.folder.write("precious", "old");
    fs::create_symlink(desk.folder / "precious", planted);
    EXPECT_EQ(desk.message({first, file}), "Plik docelowy jest dowiązaniem symbolicznym.");

    fs::remove(planted);
    fs::create_symlink("nowhere", planted);
    EXPECT_NE(desk.message({first, file}).find("File exists"), std::string::npos);
    EXPECT_TRUE(fs::is_symlink(planted));

    EXPECT_EQ(fileBytes(desk.folder / "precious"), "old");
    EXPECT_EQ(desk.music(), (FileMap {{"First/Album/first.flac", "1"}})); // and no hidden rest
}

TEST(Transfer, refusesWhatIsNoFileInTheWayOfOneAndNamesIt)
{
    const Desk desk;
    desk.folder.write("IPOD/Music/Artist/Album/a.flac/inside", "x");
    ASSERT_EQ(::mkfifo((desk.root / "Music/Artist/Album/b.flac").c_str(), 0600), 0); // would be waited for
    for (const char *name : {"a.flac", "b.flac"}) {
        EXPECT_NE(desk.message({desk.file(name, "1")}).find(name), std::string::npos);
    }
    EXPECT_EQ(fileBytes(desk.root / "Music/Artist/Album/a.flac/inside"), "x");
}
