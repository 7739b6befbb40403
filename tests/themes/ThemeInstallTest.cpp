#include "themes/ThemeInstall.h"

#include "support/Archives.h"
#include "support/ExfatVolume.h"
#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace {

using FileMap = std::map<std::string, std::string>;

/// Where temporary files go from now on. Returns where they went.
fs::path setTemporary(const fs::path &folder)
{
    fs::path before = fs::temp_directory_path();
    ::setenv("TMPDIR", folder.c_str(), 1);
    return before;
}

/// In memory where there is room: the tests below write tens of thousands of files.
bool isRoomInMemory()
{
    std::error_code none;
    return fs::space("/dev/shm", none).available > std::uintmax_t(2) << 30 && !none;
}

/// A device with a theme of its own, a computer's folder for backups, and a folder for temporary files.
struct InstallDesk {
    fs::path temporary = setTemporary(isRoomInMemory() ? "/dev/shm" : fs::temp_directory_path());
    TemporaryFolder folder;
    fs::path root = folder / "IPOD";
    fs::path backup = folder / "Backups/new";
    FileMap settings {{"config.cfg", "volume: -20\n"}, {"themes/Dawn.cfg", "old"}, {"wps/Dawn/back.bmp", "old picture"},
        {"wps/Other.wps", "other"}};

    InstallDesk()
    {
        fs::create_directories(folder / "tmp");
        fs::create_directories(folder / "Backups");
        setTemporary(folder / "tmp");
    }
    ~InstallDesk() { setTemporary(temporary); }
    InstallDesk(const InstallDesk &) = delete;
    InstallDesk &operator=(const InstallDesk &) = delete;

    void fill() const
    {
        makeDevice(folder, "IPOD");
        folder.write(root / ".rockbox/rocks/x.rock", "code");
        for (const auto &[name, bytes] : settings) {
            folder.write(root / ".rockbox" / name, bytes);
        }
    }
    [[nodiscard]] std::string failure(const fs::path &zip) const
    {
        return failureOf([&] { (void)Storage::installTheme(zip, root, backup); });
    }
    [[nodiscard]] FileMap device() const { return filesBelow(root); }
    [[nodiscard]] bool leavesNoScratch() const { return fs::is_empty(folder / "tmp"); }
    /// Under its final name a backup is complete.
    [[nodiscard]] bool holdsWholeBackupOrNone() const
    {
        if (!fs::exists(backup)) {
            return true;
        }
        FileMap copied = filesBelow(backup);
        return copied.erase("README.txt") == 1 && copied == settings;
    }
};

Archive archive(const std::string &name)
{
    for (const Archive &known : archives()) {
        if (known.name == name) {
            return known;
        }
    }
    throw std::runtime_error("no archive " + name);
}

} // namespace

TEST(ThemeInstall, installsEveryGoodPackageAndLeavesTheDeviceAloneAtEveryOther)
{
    for (const Archive &package : archives()) {
        const InstallDesk desk;
        desk.fill();
        const FileMap before = desk.device();
        const std::string failure = desk.failure(package.path);
        EXPECT_TRUE(package.installation == "*" ? !failure.empty() : failure == package.installation)
            << package.name << ": " << failure;
        EXPECT_TRUE(desk.leavesNoScratch()) << package.name;
        if (!failure.empty()) {
            EXPECT_TRUE(fs::is_empty(desk.folder / "Backups")) << package.name;
            EXPECT_TRUE(desk.device() == before) << package.name;
            continue;
        }
        EXPECT_FALSE(fs::is_empty(desk.folder / "Backups")) << package.name;
        EXPECT_TRUE(desk.holdsWholeBackupOrNone()) << package.name;
        FileMap after = desk.device();
        EXPECT_EQ(after.at(".rockbox/themes/Dawn.cfg"), "wps: /.rockbox/wps/Dawn.wps\n") << package.name;
        EXPECT_EQ(after.at(".rockbox/wps/Dawn/back.bmp").size(), 9U * 256) << package.name;
        for (const char *theirs : {"config.cfg", "wps/Other.wps", "rocks/x.rock", "rockbox-info.txt"}) {
            const std::string name = std::string(".rockbox/") + theirs;
            EXPECT_EQ(after.at(name), before.at(name)) << package.name;
        }
    }
    EXPECT_GE(archives().size(), 100U);
}

TEST(ThemeInstall, returnsWhenAllOfItIsOnTheMedium)
{
    static int names = 0;
    static int unflushed = 0;
    const InstallDesk desk;
    desk.fill();
    {
        const FailingDisk calls(0); // takes the changes below back
        diskCalls().rename = [](const char *from, const char *to) {
            ++names;
            ++unflushed;
            return ::rename(from, to);
        };
        diskCalls().renameExclusive = [](const char *from, const char *to) {
            ++names;
            ++unflushed;
            return DiskCalls::system().renameExclusive(from, to);
        };
        diskCalls().syncfs = [](int descriptor) {
            unflushed = 0;
            return ::syncfs(descriptor);
        };
        ASSERT_EQ(desk.failure(archive("zip-9.zip").path), "");
    }
    EXPECT_GE(names, 3);
    EXPECT_EQ(unflushed, 0);
}

TEST(ThemeInstall, keepsTheNamesAndCountsTheThemes)
{
    const InstallDesk desk;
    desk.fill();
    const FileMap before = desk.device();
    ASSERT_EQ(desk.failure(archive("odd-names.zip").path), "");
    FileMap after = desk.device();
    for (const auto &[name, bytes] : {std::pair("[a]*?.bmp", "1"), {"-o", "2"}, {"x;1", "3"}, {"x;2", "4"}}) {
        EXPECT_EQ(after[std::string(".rockbox/wps/") + name], bytes);
    }
    EXPECT_EQ(after.size(), before.size() + 5); // Dawn.wps is new too
    EXPECT_EQ(Storage::installTheme(archive("letters.zip").path, desk.root, desk.folder / "Backups/2"), 1);
    EXPECT_TRUE(desk.device().contains(".rockbox/wps/Żółw 😀.bmp"));
    EXPECT_EQ(desk.failure(archive("plain.zip").path), "Folder kopii już istnieje.");
    EXPECT_EQ(messageOf([&] {
        (void)Storage::installTheme(archive("plain.zip").path, desk.folder.path(), desk.folder / "Backups/3");
    }),
        "Ten folder nie zawiera katalogu .rockbox.");
}

TEST(ThemeInstall, changesAllOrNothingWhateverHappensAtWhicheverCall)
{
    using Fault = FailingDisk::Fault;
    std::map<std::string, int> seen;
    for (const std::string what : {"refused", "late", "link", "file", "no device"}) {
        const Fault fault = what == "refused" ? Fault::Refused : what == "late" ? Fault::Late : Fault::Event;
        bool reached = true;
        for (int call = 1; reached; ++call) {
            const InstallDesk desk;
            desk.fill();
            desk.folder.write("precious", "precious");
            const fs::path target = desk.root / ".rockbox/wps/Dawn.wps";
            const FileMap before = desk.device();
            const auto plant = [&] {
                if (what == "link") {
                    fs::remove(target);
                    fs::create_symlink(desk.folder / "precious", target);
                } else if (what == "file") {
                    desk.folder.write(target, "appeared");
                } else {
                    fs::rename(desk.root / ".rockbox", desk.root / "gone");
                }
            };
            std::string failure;
            {
                const FailingDisk disk(call, call % 2 == 0 ? ENOSPC : EIO, fault, plant);
                failure = desk.failure(archive("zip-9.zip").path);
                reached = FailingDisk::reached();
            }
            ++seen[failure];
            const auto context = testing::Message() << what << call << ": " << failure;
            EXPECT_EQ(fileBytes(desk.folder / "precious"), "precious") << context;
            EXPECT_TRUE(desk.leavesNoScratch()) << context;
            EXPECT_TRUE(fault == Fault::Event || desk.holdsWholeBackupOrNone()) << context;
            ASSERT_TRUE(reached || failure.empty()) << context;
            if (what == "no device") {
                continue;
            }
            FileMap after = desk.device();
            if (failure.empty()) {
                EXPECT_EQ(after[".rockbox/themes/Dawn.cfg"], "wps: /.rockbox/wps/Dawn.wps\n") << context;
            } else {
                // What appeared stays, save where it did so between the last look at its name and the renaming.
                if (fault == Fault::Event) {
                    after.erase(".rockbox/wps/Dawn.wps");
                }
                EXPECT_TRUE(after == before) << context;
            }
        }
    }
    for (const char *message : {"", "Docelowy zasób jest dowiązaniem.", "Paczka zawiera dowiązanie symboliczne.",
             "Na iPodzie pojawił się plik bez kopii: Dawn.wps", "Ten folder nie zawiera katalogu .rockbox."}) {
        EXPECT_GT(seen[message], 0) << message;
    }
}

TEST(ThemeInstall, takesTheDisksOwnNamesWhereCaseDoesNotCount)
{
    InstallDesk desk;
    const ExfatVolume disk(desk.root);
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    desk.settings = {{"themes/DAWN.cfg", "old"}, {"wps/dawn/Back.BMP", "old picture"}};
    const FileMap before {{".rockbox/themes/DAWN.cfg", "old"}, {".rockbox/wps/dawn/Back.BMP", "old picture"}};
    bool reached = true;
    for (int call = 1; reached; ++call) {
        fs::remove_all(desk.root / ".rockbox");
        fs::remove_all(desk.backup);
        for (const auto &[name, bytes] : before) {
            desk.folder.write(desk.root / name, bytes);
        }
        std::string failure;
        {
            const FailingDisk failing(call);
            failure = desk.failure(archive("odd-names.zip").path);
            reached = FailingDisk::reached();
        }
        ASSERT_TRUE(reached || failure.empty()) << failure;
        EXPECT_TRUE(desk.holdsWholeBackupOrNone()) << call;
        FileMap after = desk.device();
        if (!failure.empty()) {
            EXPECT_TRUE(after == before) << call;
            continue;
        }
        EXPECT_EQ(after[".rockbox/themes/DAWN.cfg"], "wps: /.rockbox/wps/Dawn.wps\n");
        EXPECT_EQ(after[".rockbox/wps/dawn/Back.BMP"].size(), 9U * 256);
        EXPECT_EQ(after[".rockbox/wps/[a]__.bmp"], "1");
        EXPECT_EQ(after.size(), before.size() + 5);
    }
}
