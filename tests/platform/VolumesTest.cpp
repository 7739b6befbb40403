// The mount table's text, and real mounts where the process may make them.
#include "platform/volumes/Volumes.h"
#include "platform/volumes/MountTable.h"
#include "support/Testing.h"

#include <gmock/gmock.h>

#include <sys/mount.h>
#include <sys/sysmacros.h>

namespace {

using MountTable::Mount;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

Mount mountAt(const char *path, int id = 1, const char *root = "/", const char *type = "vfat")
{
    return {id, ::makedev(8, 17), root, path, type, "/dev/sdb1"};
}

TEST(MountTableTest, ReadsEachFieldOfALine)
{
    const std::pair<std::string, std::optional<Mount>> rows[] = {
        {"42 27 8:17 / /mnt/a rw - vfat /dev/sdb1 rw", mountAt("/mnt/a", 42)},
        {"42 27 8:17 / /mnt/a rw shared:1 master:2 unbindable - vfat /dev/sdb1 rw", mountAt("/mnt/a", 42)},
        {"42 27 8:17 /a\\040b /mnt/c\\040d\\011e\\012f\\134040 rw - vfat /dev/sdb1 rw",
            mountAt("/mnt/c d\te\nf\\040", 42, "/a b")},
        {"42 27 8:17 / /mnt/\xFF\xC5 rw - vfat /dev/sdb1 rw", mountAt("/mnt/\xFF\xC5", 42)},
        // Not escapes: too large, no octal digits, too short.
        {"42 27 8:17 / /mnt/a\\400\\089\\04 rw - vfat /dev/sdb1 rw", mountAt("/mnt/a\\400\\089\\04", 42)},
        {"42 27 0:52 / /mnt/n rw - fuse.sshfs host\\040x: rw",
            Mount {42, ::makedev(0, 52), "/", "/mnt/n", "fuse.sshfs", "host x:"}},
        {"42 27 0:52 / /mnt/n rw - tmpfs  rw", Mount {42, ::makedev(0, 52), "/", "/mnt/n", "tmpfs", ""}},
        // A mount point named "-" is no separator.
        {"42 27 8:17 / /- rw - vfat /dev/sdb1 rw", mountAt("/-", 42)},
        {"42 27 8:17 / - rw - vfat /dev/sdb1 rw", std::nullopt},
        {"42 27 8:17 / /mnt/a rw vfat /dev/sdb1 rw", std::nullopt},
        {"x 27 8:17 / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
        {"42 27 8:1x / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
        {"99999999999 27 8:17 / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
    };
    for (const auto &[line, mount] : rows) {
        EXPECT_EQ(MountTable::parseLine(line), mount) << line;
    }
    EXPECT_THAT(MountTable::parse("1 0 8:17 / / rw - vfat /dev/sdb1 rw\n\nbroken\n"
                                  "2 1 8:17 / /mnt/a rw - vfat /dev/sdb1 rw"),
        ElementsAre(mountAt("/", 1), mountAt("/mnt/a", 2)));
}

TEST(MountTableTest, TellsDisksFromTheKernelsOwnAndFatNamesFromOthers)
{
    const std::tuple<const char *, const char *, bool, bool> rows[] = {{"vfat", "/", true, true},
        {"exfat", "/folder", true, true}, {"fuseblk", "/", true, true}, {"fuse.exfat", "/", true, true},
        {"hfsplus", "/", true, false}, {"overlay", "/", true, false}, {"tmpfs", "/sample", true, false},
        {"tmpfs", "/", false, false}, {"proc", "/", false, false}, {"autofs", "/", false, false},
        {"squashfs", "/", false, false}, {"fuse.gvfsd-fuse", "/", false, false}, {"fuse.portal", "/", false, false}};
    for (const auto &[type, root, disk, fat] : rows) {
        EXPECT_EQ(MountTable::isDisk(mountAt("/mnt/a", 1, root, type)), disk) << type << ' ' << root;
        EXPECT_EQ(MountTable::hasFatNames(type), fat) << type;
    }
}

TEST(MountTableTest, TellsWhatCameAndWhatWentAndWhatIsCovered)
{
    const Mount a = mountAt("/mnt/a", 1);
    const Mount b = mountAt("/mnt/b", 2);
    const Mount again = mountAt("/mnt/a", 9);
    Mount otherDisk = a;
    otherDisk.device = ::makedev(8, 33);
    using Mounts = std::vector<Mount>;
    const std::tuple<const char *, Mounts, Mounts, MountTable::Changes> rows[] = {
        {"nothing", {a, b}, {b, a}, {}},
        {"both", {a}, {b}, {{"/mnt/a"}, {"/mnt/b"}}},
        {"another mount in the same place", {a}, {again}, {{"/mnt/a"}, {"/mnt/a"}}},
        {"another disk under the old number", {a, b}, {otherDisk, b}, {{"/mnt/a"}, {"/mnt/a"}}},
    };
    for (const auto &[what, before, after, changes] : rows) {
        EXPECT_EQ(MountTable::changes(before, after), changes) << what;
    }
    EXPECT_THAT(MountTable::visible({a, b, again}), ElementsAre(again, b));
}

/// A folder in which this test may mount, known to the program as one where disks are mounted.
class VolumesTest : public testing::Test {
protected:
    void SetUp() override
    {
        Volumes::setMountFolders({m_mounts});
        fs::create_directories(m_mounts);
        if (::mount("none", m_mounts.c_str(), "tmpfs", 0, "size=1m") != 0) {
            GTEST_SKIP() << "this process may not mount";
        }
        ::umount(m_mounts.c_str());
    }
    void TearDown() override
    {
        for (; !m_made.empty(); m_made.pop_back()) {
            ::umount2(m_made.back().c_str(), MNT_DETACH);
        }
        Volumes::setMountFolders({"/media", "/mnt"});
    }

    /// Mounts a folder of the test's, or with nullptr a disk in memory.
    void mount(const fs::path &target, const char *source = "sample")
    {
        fs::create_directories(target);
        fs::create_directories(m_folder / (source ? source : ""));
        ASSERT_EQ(source ? ::mount((m_folder / source).c_str(), target.c_str(), nullptr, MS_BIND, nullptr)
                         : ::mount("none", target.c_str(), "tmpfs", 0, "size=1m"),
            0);
        m_made.push_back(target);
    }

    /// From here on keeps what a watcher says: "+" and "-" before the names of its disks.
    void watch()
    {
        m_watcher.emplace();
        const auto note = [this](auto signal, char sign) {
            const auto keep = [this, sign](const fs::path &path) {
                if (path.parent_path() == m_mounts) {
                    m_notices.push_back(sign + path.filename().string());
                }
            };
            QObject::connect(&*m_watcher, signal, &*m_watcher, keep, Qt::QueuedConnection); // as to another thread
        };
        note(&Volumes::Watcher::mounted, '+');
        note(&Volumes::Watcher::unmounted, '-');
    }
    void expectNotices(const std::vector<std::string> &expected)
    {
        (void)eventually([&] { return m_notices.size() >= expected.size(); });
        EXPECT_EQ(m_notices, expected);
    }

    TemporaryFolder m_folder;
    fs::path m_mounts = m_folder / "mounts";
    std::vector<fs::path> m_made;
    std::vector<std::string> m_notices;
    std::optional<Volumes::Watcher> m_watcher;
};

TEST(Volumes, AnswersForFoldersThatAreNoMounts)
{
    const TemporaryFolder folder;
    Volumes::setMountFolders({"/a/b"}, [](const fs::path &) { return true; });
    for (const char *other : {"/a/b", "/a/b/c/IPOD", "/a/IPOD", "/media/IPOD", "/a/b/./IPOD", ""}) {
        EXPECT_FALSE(Volumes::isMountedDisk(other)) << other; // equal by text alone
    }
    EXPECT_TRUE(Volumes::isMountedDisk("/a/b/IPOD"));
    Volumes::setMountFolders({folder.path()});
    folder.write("plain/file", "x");
    EXPECT_FALSE(Volumes::isMountedDisk(folder / "plain"));
    EXPECT_EQ(Volumes::nameRules(folder / "gone"), Volumes::NameRules::Posix);
    EXPECT_EQ(Volumes::nameRules("/proc"), Volumes::NameRules::Posix);
    EXPECT_THROW((void)Volumes::capacity(folder / "gone"), fs::filesystem_error);
}

TEST_F(VolumesTest, ListsWhatIsMountedAmongDisksByWhateverName)
{
    const std::vector<std::string> names {
        "two words", "line\nfeed\ttab", "back\\slash\\040", "\xFF\xFE", "a#b", "IPOD"};
    for (const std::string &name : names) {
        mount(m_mounts / name);
    }
    mount(m_mounts / "IPOD"); // once more, above the first
    mount(m_mounts / ".hidden");
    mount(m_mounts / "memory", nullptr);
    mount(m_folder / "memory elsewhere", nullptr);

    const std::vector<fs::path> mounted = Volumes::mounted();
    for (const std::string &name : names) {
        EXPECT_EQ(std::count(mounted.begin(), mounted.end(), m_mounts / name), 1) << name;
        EXPECT_TRUE(Volumes::isMountedDisk(m_mounts / name)) << name;
    }
    EXPECT_THAT(mounted, Contains(m_mounts / "memory"));
    for (const auto &other : {m_mounts / ".hidden", m_folder / "memory elsewhere", fs::path("/proc")}) {
        EXPECT_THAT(mounted, Not(Contains(other)));
    }
}

TEST_F(VolumesTest, TheWatcherTellsOfDisksAloneAndMissesNoneBetweenTwoReadings)
{
    watch();
    mount(m_mounts / "IPOD");
    mount(m_mounts / ".hidden");
    expectNotices({"+IPOD"});
    ASSERT_EQ(::umount((m_mounts / "IPOD").c_str()), 0);
    mount(m_mounts / "IPOD", "other"); // in the same place, under the same number
    std::vector<std::string> expected {"+IPOD", "-IPOD", "+IPOD"};
    expectNotices(expected);
    for (int i = 100; i < 300; ++i) { // more than one page of the table's text
        const std::string name = "disk with a rather long name " + std::to_string(i);
        mount(m_mounts / name);
        expected.push_back("+" + name);
    }
    expectNotices(expected);
}

} // namespace
