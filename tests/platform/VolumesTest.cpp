// The mount table's text, and real mounts where the process may make them.
#include "platform/Volumes.h"
#include "platform/MountTable.h"
#include "support/Eventually.h"
#include "support/ExfatVolume.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/sysmacros.h>

#include <ranges>

namespace {

using MountTable::Mount;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

Mount mountAt(const char *path, int id = 1, const char *root = "/", const char *type = "vfat")
{
    return {id, ::makedev(8, 17), root, path, type, "/dev/sdb1"};
}

struct MountLineRow {
    std::string line;
    std::optional<Mount> mount;
};

TEST(MountTableTest, ReadsEachFieldOfALine)
{
    const std::vector<MountLineRow> rows {
        {"42 27 8:17 / /media/ann/IPOD rw,nosuid shared:5 - vfat /dev/sdb1 rw,utf8", mountAt("/media/ann/IPOD", 42)},
        {"42 27 8:17 / /mnt/a rw - vfat /dev/sdb1 rw", mountAt("/mnt/a", 42)},
        {"42 27 8:17 / /mnt/a rw shared:1 master:2 unbindable - vfat /dev/sdb1 rw", mountAt("/mnt/a", 42)},
        {"42 27 8:17 /a\\040b /mnt/c\\040d\\011e\\012f\\134040 rw - vfat /dev/sdb1 rw",
            mountAt("/mnt/c d\te\nf\\040", 42, "/a b")},
        {"42 27 8:17 / /mnt/\xFF\xC5 rw - vfat /dev/sdb1 rw", mountAt("/mnt/\xFF\xC5", 42)},
        // Not escapes: too short, too large, no octal digits.
        {"42 27 8:17 / /mnt/a\\04 rw - vfat /dev/sdb1 rw", mountAt("/mnt/a\\04", 42)},
        {"42 27 8:17 / /mnt/a\\400\\089 rw - vfat /dev/sdb1 rw", mountAt("/mnt/a\\400\\089", 42)},
        {"42 27 0:52 / /mnt/n rw - fuse.sshfs host\\040x: rw",
            Mount {42, ::makedev(0, 52), "/", "/mnt/n", "fuse.sshfs", "host x:"}},
        {"42 27 0:52 / /mnt/n rw - tmpfs  rw", Mount {42, ::makedev(0, 52), "/", "/mnt/n", "tmpfs", ""}},
        // A mount point named "-" is no separator.
        {"42 27 8:17 / /- rw - vfat /dev/sdb1 rw", mountAt("/-", 42)},
        {"42 27 8:17 / - rw - vfat /dev/sdb1 rw", std::nullopt},
        {"42 27 8:17 / /mnt/a rw vfat /dev/sdb1 rw", std::nullopt},
        {"x 27 8:17 / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
        {"42 27 817 / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
        {"42 27 8:1x / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
        {"99999999999 27 8:17 / /mnt/a rw - vfat /dev/sdb1 rw", std::nullopt},
        {"", std::nullopt},
    };
    for (const MountLineRow &row : rows) {
        EXPECT_EQ(MountTable::parseLine(row.line), row.mount) << row.line;
    }
}

TEST(MountTableTest, ALineThatBreaksOffBeforeItsSourceIsNoMount)
{
    const std::string line = "42 27 8:17 / /mnt/a\\040b rw shared:5 - vfat /dev/sdb1 rw,utf8";
    const std::size_t source = line.find("/dev");
    for (std::size_t length = 0; length <= line.size(); ++length) {
        const std::optional<Mount> mount = MountTable::parseLine(std::string_view(line).substr(0, length));
        EXPECT_EQ(mount.has_value(), length >= source) << length;
        EXPECT_TRUE(!mount || mount->mountPoint == "/mnt/a b") << length;
    }
}

TEST(MountTableTest, ADamagedLineCostsNoOther)
{
    const std::vector<Mount> mounts = MountTable::parse("1 0 8:17 / / rw - vfat /dev/sdb1 rw\n\nbroken\n"
                                                        "2 1 8:17 / /mnt/a rw - vfat /dev/sdb1 rw");
    EXPECT_THAT(mounts, ElementsAre(mountAt("/", 1), mountAt("/mnt/a", 2)));
}

TEST(MountTableTest, TellsDisksFromTheKernelsOwn)
{
    struct Row {
        const char *type;
        const char *root;
        bool disk;
    };
    for (const Row &row : {Row {"vfat", "/", true}, Row {"ext4", "/folder", true}, Row {"fuseblk", "/", true},
             Row {"overlay", "/", true}, Row {"hfsplus", "/", true}, Row {"proc", "/", false},
             Row {"autofs", "/", false}, Row {"cgroup2", "/", false}, Row {"squashfs", "/", false},
             Row {"devtmpfs", "/", false}, Row {"fuse.gvfsd-fuse", "/", false}, Row {"fuse.portal", "/", false},
             Row {"tmpfs", "/", false}, Row {"tmpfs", "/sample", true}}) {
        EXPECT_EQ(MountTable::isDisk(mountAt("/mnt/a", 1, row.root, row.type)), row.disk)
            << row.type << ' ' << row.root;
    }
}

TEST(MountTableTest, KnowsTheDriversOfFatNames)
{
    for (const char *type : {"vfat", "msdos", "exfat", "fuseblk", "fuseblk.exfat", "fuse.exfat"}) {
        EXPECT_TRUE(MountTable::hasFatNames(type)) << type;
    }
    for (const char *type : {"ext4", "fuse.sshfs", "fuse", "hfsplus", ""}) {
        EXPECT_FALSE(MountTable::hasFatNames(type)) << type;
    }
}

TEST(MountTableTest, TellsWhatCameAndWhatWent)
{
    struct Row {
        const char *what;
        std::vector<Mount> before;
        std::vector<Mount> after;
        MountTable::Changes changes;
    };
    const Mount a = mountAt("/mnt/a", 1);
    const Mount b = mountAt("/mnt/b", 2);
    Mount otherDisk = a;
    otherDisk.device = ::makedev(8, 33);
    Mount relabelled = a;
    relabelled.id = 9;
    for (const Row &row : {
             Row {"nothing", {a, b}, {b, a}, {}},
             Row {"mounted", {a}, {a, b}, {{}, {"/mnt/b"}}},
             Row {"unmounted", {a, b}, {b}, {{"/mnt/a"}, {}}},
             Row {"both", {a}, {b}, {{"/mnt/a"}, {"/mnt/b"}}},
             Row {"another mount in the same place", {a}, {relabelled}, {{"/mnt/a"}, {"/mnt/a"}}},
             Row {"another disk under the old number", {a, b}, {otherDisk, b}, {{"/mnt/a"}, {"/mnt/a"}}},
         }) {
        EXPECT_EQ(MountTable::changes(row.before, row.after), row.changes) << row.what;
    }
}

TEST(MountTableTest, OfMountsThatCoverEachOtherTheTopmostIsVisible)
{
    const Mount below = mountAt("/mnt/a", 1);
    const Mount above = mountAt("/mnt/a", 3, "/", "tmpfs");
    const Mount other = mountAt("/mnt/b", 2);
    EXPECT_THAT(MountTable::visible({below, other, above}), ElementsAre(above, other));
}

/// A folder in which this test may mount, known to the program as one where disks are mounted.
class VolumesTest : public testing::Test {
protected:
    void SetUp() override { Volumes::setMountFolders({m_mounts}); }
    void TearDown() override
    {
        for (const std::filesystem::path &path : std::views::reverse(m_made)) {
            ::umount2(path.c_str(), MNT_DETACH);
        }
        Volumes::setMountFolders({"/media", "/mnt"});
    }

    std::filesystem::path folder(const std::string &name)
    {
        const std::filesystem::path path = m_mounts / name;
        std::filesystem::create_directories(path);
        return path;
    }

    /// False without the right to mount.
    bool bind(const std::filesystem::path &source, const std::filesystem::path &target)
    {
        const bool done = ::mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) == 0;
        if (done) {
            m_made.push_back(target);
        }
        return done;
    }
    bool mountMemory(const std::filesystem::path &target)
    {
        const bool done = ::mount("none", target.c_str(), "tmpfs", 0, "size=1m") == 0;
        if (done) {
            m_made.push_back(target);
        }
        return done;
    }
    [[nodiscard]] std::filesystem::path source(const std::string &name) const
    {
        const std::filesystem::path path = m_folder / name;
        std::filesystem::create_directories(path);
        return path;
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_mounts = m_folder / "mounts";
    std::vector<std::filesystem::path> m_made;
};

/// What a watcher said, in its order: "+" and "-" before the paths under one folder.
class Notices {
public:
    explicit Notices(std::filesystem::path below)
        : m_below(std::move(below))
    {
        // Queued, as a receiver on another thread would be.
        const auto note = [this](char sign) {
            return [this, sign](const std::filesystem::path &path) {
                if (path.parent_path() == m_below) {
                    lines.push_back(sign + path.filename().string());
                }
            };
        };
        QObject::connect(&watcher, &Volumes::Watcher::mounted, &watcher, note('+'), Qt::QueuedConnection);
        QObject::connect(&watcher, &Volumes::Watcher::unmounted, &watcher, note('-'), Qt::QueuedConnection);
    }

    [[nodiscard]] bool become(const std::vector<std::string> &expected)
    {
        return eventually([&] { return lines.size() >= expected.size(); }) && lines == expected;
    }

    std::vector<std::string> lines;
    Volumes::Watcher watcher;

private:
    std::filesystem::path m_below;
};

TEST_F(VolumesTest, MountFoldersAreEqualByTextAlone)
{
    EXPECT_TRUE(Volumes::isMountFolder(m_mounts));
    for (const std::filesystem::path &other : {m_mounts / "", m_mounts / "IPOD", m_mounts.parent_path(),
             std::filesystem::path("/media"), m_mounts / ".", std::filesystem::path()}) {
        EXPECT_FALSE(Volumes::isMountFolder(other)) << other;
    }
}

TEST_F(VolumesTest, CapacityIsThatOfTheVolumeOrASystemErrorWithTheName)
{
    const Volumes::Capacity room = Volumes::capacity(m_folder.path());
    EXPECT_GT(room.total, 0);
    EXPECT_LE(room.available, room.total);
    try {
        static_cast<void>(Volumes::capacity(m_folder / "gone"));
        ADD_FAILURE() << "no failure";
    } catch (const std::filesystem::filesystem_error &error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
        EXPECT_EQ(error.path1(), m_folder / "gone");
    }
}

TEST_F(VolumesTest, NamesArePosixWhereNothingSaysOtherwise)
{
    EXPECT_EQ(Volumes::nameRules(m_folder / "gone"), Volumes::NameRules::Posix);
    EXPECT_EQ(Volumes::nameRules("/proc"), Volumes::NameRules::Posix);
}

TEST_F(VolumesTest, ListsWhatIsMountedAmongDisksByWhateverName)
{
    const std::vector<std::string> names {
        "IPOD", "two words", "line\nfeed\ttab", "back\\slash\\040", "\xFF\xFE", "a#b"};
    const std::filesystem::path sample = source("sample");
    for (const std::string &name : names) {
        if (!bind(sample, folder(name))) {
            GTEST_SKIP() << "mounting needs root";
        }
    }
    ASSERT_TRUE(bind(sample, folder(".hidden")));
    ASSERT_TRUE(mountMemory(folder("memory")));
    ASSERT_TRUE(mountMemory(source("memory elsewhere")));
    ASSERT_TRUE(bind(sample, folder("IPOD"))); // once more, above the first

    const std::vector<std::filesystem::path> mounted = Volumes::mounted();
    for (const std::string &name : names) {
        EXPECT_EQ(std::count(mounted.begin(), mounted.end(), m_mounts / name), 1) << name;
    }
    EXPECT_THAT(mounted, Contains(m_mounts / "memory"));
    EXPECT_THAT(mounted, Not(Contains(m_mounts / ".hidden")));
    EXPECT_THAT(mounted, Not(Contains(m_folder / "memory elsewhere")));
    EXPECT_THAT(mounted, Not(Contains(std::filesystem::path("/proc"))));
}

TEST_F(VolumesTest, TheWatcherTellsOfDisksAndOfNothingElse)
{
    Notices notices(m_mounts);
    if (!bind(source("sample"), folder("IPOD"))) {
        GTEST_SKIP() << "mounting needs root";
    }
    EXPECT_TRUE(notices.become({"+IPOD"})) << testing::PrintToString(notices.lines);
    ASSERT_TRUE(bind(source("sample"), folder(".hidden")));
    ASSERT_TRUE(bind(source("sample"), folder("second")));
    EXPECT_TRUE(notices.become({"+IPOD", "+second"})) << testing::PrintToString(notices.lines);
    ASSERT_EQ(::umount(folder("IPOD").c_str()), 0);
    EXPECT_TRUE(notices.become({"+IPOD", "+second", "-IPOD"})) << testing::PrintToString(notices.lines);
}

TEST_F(VolumesTest, ADiskThatTookAnothersPlaceBetweenTwoReadingsIsNoticed)
{
    if (!bind(source("first"), folder("IPOD"))) {
        GTEST_SKIP() << "mounting needs root";
    }
    Notices notices(m_mounts);
    ASSERT_EQ(::umount(folder("IPOD").c_str()), 0);
    ASSERT_TRUE(bind(source("second"), folder("IPOD")));
    EXPECT_TRUE(notices.become({"-IPOD", "+IPOD"})) << testing::PrintToString(notices.lines);
}

TEST_F(VolumesTest, ManyMountsBetweenTwoReadingsAreAllReported)
{
    Notices notices(m_mounts);
    std::vector<std::string> expected;
    for (int i = 100; i < 300; ++i) { // more than one page of the table's text
        const std::string name = "disk with a rather long name " + std::to_string(i);
        if (!bind(source("sample"), folder(name))) {
            GTEST_SKIP() << "mounting needs root";
        }
        expected.push_back("+" + name);
    }
    EXPECT_TRUE(notices.become(expected)) << notices.lines.size();
}

TEST_F(VolumesTest, ARealDiskComesWithItsNameRulesAndItsSizeAndGoes)
{
    Notices notices(m_mounts);
    ExfatVolume disk(m_mounts / "IPOD", 32 << 20);
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    EXPECT_TRUE(notices.become({"+IPOD"})) << testing::PrintToString(notices.lines);
    EXPECT_THAT(Volumes::mounted(), Contains(disk.mountPoint()));

    std::filesystem::create_directories(disk.mountPoint() / "Music/Artist");
    EXPECT_EQ(Volumes::nameRules(disk.mountPoint()), Volumes::NameRules::Fat);
    EXPECT_EQ(Volumes::nameRules(disk.mountPoint() / "Music/Artist"), Volumes::NameRules::Fat);
    EXPECT_EQ(Volumes::nameRules(m_mounts), Volumes::NameRules::Posix);
    const Volumes::Capacity room = Volumes::capacity(disk.mountPoint() / "Music");
    EXPECT_GT(room.total, 28 << 20);
    EXPECT_LE(room.total, 32 << 20);
    std::ofstream(disk.mountPoint() / "Music/file") << std::string(8 << 20, 'x');
    EXPECT_NEAR(double(room.available - Volumes::capacity(disk.mountPoint()).available), 8 << 20, 1 << 20);

    ASSERT_TRUE(disk.unmount());
    EXPECT_TRUE(notices.become({"+IPOD", "-IPOD"})) << testing::PrintToString(notices.lines);
    ASSERT_TRUE(disk.mount()) << disk.reason();
    EXPECT_TRUE(std::filesystem::is_directory(disk.mountPoint() / "Music/Artist"));
}

// What the FAT name rules rest on.
TEST_F(VolumesTest, ARealDiskRefusesWhatFatNamesMustNotHold)
{
    ExfatVolume disk(m_mounts / "IPOD");
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    const auto create = [&](const std::string &name) {
        const int file = ::open((disk.mountPoint() / name).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        return file >= 0 && ::close(file) == 0;
    };
    for (const char character : std::string("\"*:<>?\\|\x01\x1F")) {
        EXPECT_FALSE(create(std::string("What") + character + ".flac")) << int(character);
    }
    for (const char *name : {"What'.flac", "What_.flac", "What", "Zażółć – ½.flac"}) {
        EXPECT_TRUE(create(name)) << name;
    }
    EXPECT_FALSE(create("WHAT_.FLAC")) << "names of a FAT disk are equal without case";
}

} // namespace
