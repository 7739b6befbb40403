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
