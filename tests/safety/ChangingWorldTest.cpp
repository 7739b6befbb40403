// Every job that writes, while another program changes the world at the n-th disk call, for each n: nothing outside the
// device is touched, nothing on it is lost without a copy, and the user reads what happened.
#include "themes/ThemeInstall.h"

#include "artwork/ArtworkInstall.h"

#include "storage/Backup.h"
#include "storage/MacMetadata.h"
#include "storage/Playlist.h"
#include "storage/Transfer.h"

#include "support/AnotherDisk.h"
#include "support/Archives.h"
#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace fs = std::filesystem;

namespace {

using Fault = FailingDisk::Fault;
using Contents = std::set<std::string>;

/// In memory where that is a place of its own.
fs::path quickFolder()
{
    return fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
}

/// The files of a device, each with bytes of its own; another one has the same names.
void fill(const fs::path &root, const std::string &owner)
{
    const std::string magic("\0\5\x16\7", 4);
    for (const char *name : {".rockbox/rockbox-info.txt", ".rockbox/config.cfg", ".rockbox/themes/Dawn.cfg",
             ".rockbox/wps/Dawn.wps", ".rockbox/wps/Dawn/back.bmp", "Music/Artist/Album/1.mp3",
             "Music/Artist/Album/cover.jpeg", "Music/Artist/Album/._1.mp3", "Playlists/old.m3u8"}) {
        fs::create_directories((root / name).parent_path());
        const bool isCompanion = fs::path(name).filename().native().starts_with("._");
        std::ofstream(root / name) << (isCompanion ? magic : "") << owner << name;
    }
}

/// The bytes of all files; what has a hidden name of ours is a rest.
Contents contentsBelow(const fs::path &folder)
{
    Contents contents;
    if (!fs::is_symlink(folder) && fs::exists(folder)) {
        for (const auto &[name, bytes] : filesBelow(folder)) {
            EXPECT_EQ(name.find(".partial"), std::string::npos) << name;
            contents.insert(bytes);
        }
    }
    return contents;
}

/// A device, a place outside that looks like one, and a computer. Folders moved away stay on the device's disk.
struct World {
    TemporaryFolder folder {quickFolder()};
    fs::path root = folder / "IPOD";
    fs::path outside = folder / "outside";
    fs::path backups = folder / "Backups";
    fs::path album = root / "Music/Artist/Album";

    World()
    {
        fill(root, "device ");
        fill(outside, "outside ");
        folder.write("Computer/new.mp3", "new music");
        fs::create_directories(backups);
        fs::create_directories(folder / "tmp");
        ::setenv("TMPDIR", (folder / "tmp").c_str(), 1);
    }
    [[nodiscard]] Contents onDevice() const
    {
        Contents contents = contentsBelow(root);
        contents.merge(contentsBelow(folder / "moved"));
        return contents;
    }
};

struct Job {
    const char *name;
    std::function<void(const World &)> run;
    bool allOrNothing = false;
};

std::vector<Job> jobs()
{
    return {{"theme",
                [](const World &world) {
                    (void)Storage::installTheme(archive("zip-9.zip"), world.root, world.backups / "new");
                },
                true},
        {"cover",
            [](const World &world) {
                const fs::path tracks[] = {world.album / "1.mp3"};
                Artwork::install("new cover", tracks, world.root, world.backups);
            },
            true},
        {"transfer",
            [](const World &world) {
                const TransferFile files[] = {{world.folder / "Computer/new.mp3", QStringLiteral("Artist"),
                    QStringLiteral("Album"), std::nullopt}};
                for (const fs::path &destination :
                    Storage::transfer(files, world.root, [](int, int) { }).destinations) {
                    EXPECT_EQ(destination, world.album / "new.mp3");
                }
            }},
        {"playlist",
            [](const World &world) {
                const fs::path tracks[] = {world.album / "1.mp3"};
                (void)Storage::playlist(QStringLiteral("new"), tracks, world.root);
            }},
        {"cleanup", [](const World &world) { (void)Storage::cleanupMacMetadata(world.root, world.backups); }},
        {"backup", [](const World &world) { Storage::backup(world.root, world.backups / "new"); }}};
}

/// What happens once, and what some of the jobs say of it. `before` is on the device otherwise: the change itself may
/// take something away.
struct Change {
    std::string name;
    std::function<void(const World &)> happen;
    Fault when = Fault::Event;
    std::set<std::string> messages = {};
};

Change linked(const std::string &place, const std::set<std::string> &messages)
{
    const auto happen = [place](const World &world) {
        const fs::path link = place.empty() ? world.root : world.root / place;
        fs::rename(link, world.folder / "moved");
        fs::create_directory_symlink(place.empty() ? world.outside : world.outside / place, link);
    };
    return {"a link at " + place, happen, Fault::Event, messages};
}

/// Has each job run with the change at the n-th call, for each n, and `look` at what is left.
void tryAll(const Change &change, const std::function<void(const World &, const std::string &)> &look)
{
    std::set<std::string> seen;
    for (const Job &job : jobs()) {
        for (int call = 1, reached = true; reached; ++call) {
            const World world;
            const Contents before = world.onDevice();
            const Contents outside = contentsBelow(world.outside);
            std::string failure;
            {
                const FailingDisk disk(call, EIO, change.when, [&] { change.happen(world); });
                failure = failureOf([&] { job.run(world); });
                reached = FailingDisk::reached();
            }
            SCOPED_TRACE(change.name + ", " + job.name + ", call " + std::to_string(call) + ": " + failure);
            seen.insert(failure.substr(0, failure.find("\n\nKopia: ")));
            ASSERT_TRUE(reached || failure.empty());
            look(world, failure);
            EXPECT_EQ(contentsBelow(world.outside), outside);
            EXPECT_TRUE(fs::is_empty(world.folder / "tmp"));
            const Contents now = world.onDevice();
            Contents kept = contentsBelow(world.backups);
            kept.insert(now.begin(), now.end());
            EXPECT_TRUE(std::ranges::includes(kept, before)) << "lost";
            if (job.allOrNothing && !failure.empty() && failure.find("\n\nKopia: ") == std::string::npos) {
                EXPECT_EQ(now, before);
            }
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
    for (const std::string &message : seen) {
        std::cerr << change.name << " | " << message << "\n";
    }
    for (const std::string &message : change.messages) {
        EXPECT_TRUE(seen.contains(message)) << change.name << ": " << message;
    }
}

} // namespace

TEST(ChangingWorld, followsNoFolderThatBecomesALink)
{
    const std::string root = "Folder urządzenia nie może być dowiązaniem symbolicznym.";
    for (const Change &change : {linked("", {root}), linked(".rockbox", {root}), linked(".rockbox/themes", {}),
             linked(".rockbox/wps/Dawn", {}), linked("Music/Artist", {"Ścieżka zawiera dowiązanie: Artist"}),
             linked("Music/Artist/Album", {}), linked("Playlists", {})}) {
        tryAll(change, [](const World &, const std::string &) { });
    }
}

TEST(ChangingWorld, leavesAnotherDiskAtTheSamePlaceAlone)
{
    if (!AnotherDisk::available()) {
        GTEST_SKIP() << "no mount namespace here";
    }
    std::optional<AnotherDisk> disk;
    Contents second;
    const Change exchanged {"another disk",
        [&](const World &world) {
            disk.emplace(world.root);
            ASSERT_TRUE(disk->mounted());
            fill(world.root, "second ");
            second = contentsBelow(world.root);
        },
        Fault::Event, {"W miejscu iPoda jest teraz inny dysk lub folder. Podłącz iPoda ponownie."}};
    tryAll(exchanged, [&](const World &world, const std::string &) {
        if (disk) {
            EXPECT_EQ(contentsBelow(world.root), second);
            disk.reset();
        }
    });
}
