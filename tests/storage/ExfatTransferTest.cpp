// A whole transfer, and a playlist of it, onto a real case-insensitive disk that refuses what FAT refuses.
#include "storage/Playlist.h"
#include "storage/Transfer.h"

#include "platform/volumes/Volumes.h"

#include "support/ExfatVolume.h"
#include "support/Testing.h"

namespace {

std::string polishLetters(int letters)
{
    std::string result;
    for (int i = 0; i < letters; ++i) {
        result += i % 2 == 0 ? "ż" : "Ó";
    }
    return result;
}

} // namespace

TEST(ExfatTransfer, givesEveryFileANameThatTheDiskTakes)
{
    const TemporaryFolder folder;
    const ExfatVolume disk(folder / "IPOD");
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    const fs::path root = disk.mountPoint();
    fs::create_directories(root / ".rockbox");
    ASSERT_EQ(Volumes::nameRules(root), Volumes::NameRules::Fat);

    const auto file = [&](const std::string &name, std::string_view bytes, const std::string &artist = "case",
                          const std::string &album = "x", std::optional<QString> disc = {}) -> TransferFile {
        return {folder.write("Computer/" + name, bytes), QString::fromStdString(artist), QString::fromStdString(album),
            std::move(disc)};
    };
    const std::vector<TransferFile> files {
        file("1/Who? * \"x\" <y> |z|.flac", "1", "AC/DC: Live", "What?"),
        file("2/dot.flac", "2", "Trailing...", "Blank. "),
        file("3/a.flac", "3", polishLetters(200), polishLetters(160), u"CD 1"_s),
        file("4/Same.flac", "4"),
        file("5/sAME.flac", "5", "CASE", "X"),
        file("6/noextension", "6"),
        file("7/noextension", "7"),
        file("8/byte\xE9.flac", "8"),
        file("9/SAME.flac", "4", "Case", "X"),
    };
    const std::map<std::string, std::string> expected {{"AC-DC- Live/What_/Who_ _ 'x' _y_ _z_.flac", "1"},
        {"Trailing/Blank/dot.flac", "2"}, {polishLetters(160) + "/" + polishLetters(160) + "/CD 1/a.flac", "3"},
        {"case/x/Same.flac", "4"}, {"case/x/sAME (2).flac", "5"}, {"case/x/noextension", "6"},
        {"case/x/noextension (2)", "7"}, {"case/x/byte_.flac", "8"}};
    for (const int copied : {8, 0}) {
        const TransferResult result = Storage::transfer(files, Storage::DeviceAnchor(root), [](int, int) { });
        EXPECT_EQ(result.copied, copied);
        EXPECT_EQ(result.skipped, 9 - copied);
        for (const fs::path &destination : result.destinations) {
            EXPECT_TRUE(expected.contains(destination.lexically_relative(root / "Music"))) << destination;
        }
        EXPECT_EQ(filesBelow(root / "Music"), expected);
    }
    const fs::path track[] = {root / "Music/case/x/noextension"};
    (void)Storage::playlist(u"Kto? \"x\""_s, track, root);
    EXPECT_EQ(failureOf([&] { (void)Storage::playlist(u"KTO_ 'X'"_s, track, root); }),
        "Playlista o tej nazwie już istnieje. Wybierz inną nazwę.");
    EXPECT_EQ(fileBytes(root / "Playlists/Kto_ 'x'.m3u8"), "#EXTM3U\n/Music/case/x/noextension\n");
}
