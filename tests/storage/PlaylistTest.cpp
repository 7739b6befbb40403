#include "storage/Playlist.h"

#include "support/Testing.h"

namespace {

struct PlaylistDesk {
    TemporaryFolder folder;
    fs::path root = folder / "IPOD";
    PlaylistDesk() { makeDevice(folder, "IPOD"); }

    std::string failure(const char *name, const std::vector<fs::path> &tracks) const
    {
        return failureOf([&] { (void)Storage::playlist(QString::fromUtf8(name), tracks, root); });
    }
};

const std::string nameTaken = "Playlista o tej nazwie już istnieje. Wybierz inną nazwę.";

} // namespace

TEST(Playlist, namesTracksOfTheDeviceAloneAndIsNeverReplaced)
{
    const PlaylistDesk desk;
    const std::string root = desk.root.string();
    for (const std::string &track : {root + "2/a.mp3", root + "/../a.mp3", root + "/a\nb", root + "/a\rb"}) {
        EXPECT_EQ(desk.failure("a", {desk.root / "good.mp3", track}),
            "Playlista może zawierać wyłącznie utwory z wybranego iPoda.");
    }
    EXPECT_NE(desk.failure("a", {root + "/\xE9.mp3"}).find("UTF-8"), std::string::npos);
    EXPECT_FALSE(fs::exists(desk.root / "Playlists"));

    EXPECT_EQ(desk.failure("Rock/Pop", {root + "/x/../Music//Żółw #1.mp3", root + "/b.mp3", root + "/b.mp3"}), "");
    fs::create_symlink("nowhere", desk.root / "Playlists/link.m3u8");
    EXPECT_EQ(desk.failure("Rock/Pop", {root + "/other.mp3"}), nameTaken);
    EXPECT_EQ(desk.failure("link", {root + "/other.mp3"}), nameTaken);
    EXPECT_EQ(fileBytes(desk.root / "Playlists/Rock-Pop.m3u8"), "#EXTM3U\n/Music/Żółw #1.mp3\n/b.mp3\n/b.mp3\n");
}

TEST(Playlist, isCountedAsTheFirmwareDoes)
{
    const TemporaryFolder folder;
    const std::string line(65537, 'x'); // longer than what is read at a time
    const std::map<std::string, std::int64_t> lengths {{"", 0}, {"#EXTM3U\n", 0}, {"\n\r\n", 0}, {"a", 1},
        {"a\rb\r\nc", 3}, {"#EXTM3U\r\n#a\n/b #c\n\n #d\n", 2}, {"\xEF\xBB\xBF#EXTM3U\na\n", 1},
        {"a\n\xEF\xBB\xBF#b\n", 2}, {"\xEF\xBB", 1}, {line + "\n#" + line + "\n" + line, 2},
        {std::string(65536, '\n') + "a", 1}};
    for (const auto &[text, length] : lengths) {
        EXPECT_EQ(Storage::playlistLength(folder.write("a.m3u", text), {}), length) << text.substr(0, 40);
    }
    fs::create_symlink("a.m3u", folder / "link.m3u");
    fs::create_directory_symlink(".", folder / "folder");
    fs::create_directory(folder / "b.m3u");
    fs::resize_file(folder.write("large.m3u", ""), 32'000'000);
    EXPECT_EQ(Storage::playlistLength(folder / "large.m3u", {}), 1);
    fs::resize_file(folder / "large.m3u", 32'000'001);
    for (const char *none : {"large.m3u", "link.m3u", "folder/a.m3u", "b.m3u", "c.m3u"}) {
        EXPECT_EQ(Storage::playlistLength(folder / none, {}), std::nullopt) << none;
    }
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_EQ(Storage::playlistLength(folder / "a.m3u", stopped.get_token()), std::nullopt);
}
