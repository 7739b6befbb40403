#include "themes/ThemeInstall.h"

#include "storage/ZipInspection.h"

#include "support/Archives.h"
#include "support/ExfatVolume.h"
#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

using FileMap = std::map<std::string, std::string>;
using Fault = FailingDisk::Fault;

/// In memory where there is room: the tests below write tens of thousands of files.
fs::path quickFolder()
{
    static const fs::path own = fs::temp_directory_path();
    std::error_code none;
    const bool hasRoom = fs::space("/dev/shm", none).available > std::uintmax_t(2) << 30;
    return hasRoom && !none ? "/dev/shm" : own;
}

/// A device with a theme of its own, a computer's folder for backups, and one for temporary files.
struct InstallDesk {
    int quick = ::setenv("TMPDIR", quickFolder().c_str(), 1);
    TemporaryFolder folder;
    fs::path root = folder / "IPOD";
    FileMap settings {{"themes/Dawn.cfg", "old"}, {"wps/Dawn/back.bmp", "old picture"}};
    std::string failure; ///< of the last install

    /// On a device made anew. True if the call that was to fail has been made.
    bool install(const fs::path &zip, int failAt = 0, Fault fault = Fault::Refused, std::function<void()> event = {})
    {
        for (const char *earlier : {"IPOD/.rockbox", "IPOD/gone", "Backups", "tmp"}) {
            fs::remove_all(folder / earlier);
        }
        fs::create_directories(folder / "Backups");
        fs::create_directories(folder / "tmp");
        ::setenv("TMPDIR", (folder / "tmp").c_str(), 1);
        makeDevice(folder, "IPOD");
        for (const auto &[name, bytes] : settings) {
            folder.write(root / ".rockbox" / name, bytes);
        }
        before = device();
        const FailingDisk disk(failAt, failAt % 2 == 0 ? ENOSPC : EIO, fault, std::move(event));
        failure = failureOf([&] { EXPECT_EQ(Storage::installTheme(zip, root, folder / "Backups/new"), 1); });
        return FailingDisk::reached();
    }
    [[nodiscard]] FileMap device() const { return filesBelow(root / ".rockbox"); }
    /// The package's files are there, the others and a whole backup of the old ones too; or nothing has changed.
    void expectAllOrNothing(const std::string &what) const
    {
        SCOPED_TRACE(what + ": " + failure);
        EXPECT_TRUE(fs::is_empty(folder / "tmp"));
        FileMap saved = filesBelow(folder / "Backups");
        if (fs::exists(folder / "Backups/new")) {
            EXPECT_EQ(saved.count("new/README.txt"), 1U);
            for (const auto &[name, bytes] : settings) {
                EXPECT_EQ(saved["new/" + name], bytes);
            }
        }
        FileMap after = device();
        if (failure.empty()) {
            EXPECT_FALSE(saved.empty());
            const std::string theme = settings.begin()->first;
            const std::string picture = settings.rbegin()->first;
            EXPECT_EQ(std::exchange(after[theme], before.at(theme)), "wps: /.rockbox/wps/Dawn.wps\n");
            EXPECT_EQ(std::exchange(after[picture], before.at(picture)).size(), 9U * 256);
            std::erase_if(after, [&](const auto &file) { return !before.contains(file.first); });
        }
        EXPECT_TRUE(after == before);
    }

    FileMap before; ///< what the device held before the last install
};

/// With the n-th disk call at fault, for each n.
void installWithFaults(InstallDesk &desk)
{
    for (const Fault fault : {Fault::Refused, Fault::Late}) {
        int call = 1;
        while (desk.install(archive("odd-names.zip"), call, fault)) {
            desk.expectAllOrNothing("call " + std::to_string(call));
            ++call;
        }
        EXPECT_EQ(desk.failure, "");
        EXPECT_GT(call, 50);
        EXPECT_EQ(desk.device().size(), desk.before.size() + 5);
    }
}

} // namespace

TEST(ThemeInstall, installsEveryGoodPackageAndLeavesTheDeviceAloneAtEveryOther)
{
    InstallDesk desk;
    ASSERT_GE(archives().size(), 100U);
    for (const Archive &package : archives()) {
        const fs::path zip = archive(package.name.c_str());
        EXPECT_EQ(messageOf([&] { Storage::inspectZip(zip); }), package.inspection) << package.name;
        desk.install(zip);
        desk.expectAllOrNothing(package.name);
        const bool foretold
            = package.installation == "*" ? !desk.failure.empty() : desk.failure == package.installation;
        EXPECT_TRUE(foretold) << package.name << ": " << desk.failure;
        EXPECT_EQ(fs::is_empty(desk.folder / "Backups"), !desk.failure.empty()) << package.name;
    }
}

TEST(ThemeInstall, changesAllOrNothingWhicheverDiskCallFails)
{
    InstallDesk desk;
    installWithFaults(desk);
    FileMap after = desk.device();
    for (const auto &[name, bytes] : {std::pair("[a]*?.bmp", "1"), {"-o", "2"}, {"x;1", "3"}, {"x;2", "4"}}) {
        EXPECT_EQ(after[std::string("wps/") + name], bytes);
    }
}

TEST(ThemeInstall, takesTheDisksOwnNamesWhereCaseDoesNotCount)
{
    InstallDesk desk;
    desk.settings = {{"themes/DAWN.cfg", "old"}, {"wps/dawn/Back.BMP", "old picture"}};
    const ExfatVolume disk(desk.root);
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    installWithFaults(desk);
    EXPECT_EQ(desk.device()["wps/[a]__.bmp"], "1");
}

TEST(ThemeInstall, followsNoLinkAndReplacesNothingUnsavedThatAppearsMeanwhile)
{
    InstallDesk desk;
    const fs::path target = desk.root / ".rockbox/wps/Dawn.wps";
    const fs::path precious = desk.folder.write("precious", "precious");
    const auto plantLink = [&] {
        fs::remove(target);
        fs::create_symlink(precious, target);
    };
    const auto plantFile = [&] { desk.folder.write(target, "appeared"); };
    const auto takeAway = [&] { fs::rename(desk.root / ".rockbox", desk.root / "gone"); };
    std::map<std::string, int> seen;
    for (const std::function<void()> &event : std::vector<std::function<void()>> {plantLink, plantFile, takeAway}) {
        for (int call = 1; desk.install(archive("zip-9.zip"), call, Fault::Event, event); ++call) {
            ++seen[desk.failure];
            EXPECT_EQ(fileBytes(precious), "precious");
            fs::remove(target); // what was planted is there, or was replaced where it came behind the last look
            if (fs::exists(desk.root / ".rockbox")) {
                desk.expectAllOrNothing("call " + std::to_string(call));
            }
        }
    }
    for (const char *message : {"", "Docelowy zasób jest dowiązaniem.", "Paczka zawiera dowiązanie symboliczne.",
             "Na iPodzie pojawił się plik bez kopii: Dawn.wps", "Ten folder nie zawiera katalogu .rockbox."}) {
        EXPECT_GT(seen[message], 0) << message;
    }
}

TEST(ThemeInstall, returnsWhenAllOfItIsOnTheMedium)
{
    static int unflushed = 0;
    static bool flushed = false;
    InstallDesk desk;
    desk.install(archive("zip-9.zip"), 1, Fault::Event, [] {
        diskCalls().rename = [](const char *from, const char *to) { return ++unflushed, ::rename(from, to); };
        diskCalls().syncfs = [](int descriptor) {
            flushed = std::exchange(unflushed, 0) > 0;
            return ::syncfs(descriptor);
        };
    });
    EXPECT_EQ(desk.failure, "");
    EXPECT_TRUE(flushed && unflushed == 0);
}
