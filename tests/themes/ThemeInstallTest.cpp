#include "themes/ThemeInstall.h"

#include "storage/ZipInspection.h"

#include "support/Archives.h"
#include "support/ExfatVolume.h"
#include "support/FailingDisk.h"
#include "support/Testing.h"

#include <QCryptographicHash>

#include <sys/resource.h>

namespace {

using FileMap = std::map<std::string, std::string>;
using Fault = FailingDisk::Fault;

const Archive &named(const std::string &name)
{
    static const std::vector<Archive> all = archives();
    return *std::find_if(all.begin(), all.end(), [&](const Archive &each) { return each.name == name; });
}

/// The shells that programs are started from give them no more descriptors than these, by default.
int limitDescriptors()
{
    const rlimit limit {.rlim_cur = 1024, .rlim_max = 1024};
    return ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// A device with a theme of its own, a computer's folder for backups, and one for temporary files.
struct InstallDesk {
    int quick = ::setenv("TMPDIR", quickFolder().c_str(), 1);
    int few = limitDescriptors();
    TemporaryFolder folder;
    fs::path root = folder / "IPOD";
    FileMap settings {{"themes/Dawn.cfg", "old"}, {"wps/Dawn/back.bmp", "old picture"}};
    std::string failure; ///< of the last install

    /// On a device made anew, with a call that fails, or before which something happens. True if that call was made.
    bool install(const Archive &zip, int failAt = 0, std::function<void()> event = {})
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
        package = zip;
        const FailingDisk disk(failAt, EIO, event ? Fault::Event : Fault::Refused, event);
        failure = failureOf(
            [&] { EXPECT_EQ(Storage::installTheme(archive(zip.name.c_str()), root, folder / "Backups/new"), 1); });
        return FailingDisk::reached();
    }
    /// The SHA-256 of each of its files.
    [[nodiscard]] FileMap device() const
    {
        FileMap files = filesBelow(root);
        for (auto &[name, bytes] : files) {
            bytes = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
        }
        return files;
    }
    /// The package's files are there, the others and a whole backup of the old ones too; or nothing has changed.
    void expectAllOrNothing(const std::string &what) const
    {
        SCOPED_TRACE(what + ": " + failure);
        EXPECT_TRUE(fs::is_empty(folder / "tmp"));
        FileMap saved = filesBelow(folder / "Backups");
        if (fs::exists(folder / "Backups/new")) {
            EXPECT_EQ(saved.count("new/README.txt"), 1U);
            for (const auto &[name, bytes] : settings) { // the backup has names of its own for the folders
                EXPECT_EQ(saved["new/" + std::string(1, char(std::tolower(name[0]))) + name.substr(1)], bytes);
            }
        }
        FileMap expected = before;
        if (failure.empty()) {
            EXPECT_FALSE(saved.empty());
            for (const auto &[name, digest] : package.files) {
                expected[".rockbox/" + (spelling.contains(name) ? spelling.at(name) : name)] = digest;
            }
        }
        EXPECT_TRUE(device() == expected);
    }

    Archive package; ///< the last that was to be installed
    std::map<std::string, std::string> spelling; ///< where the disk has other names than the package
    FileMap before; ///< what the device held before the last install
};

} // namespace

TEST(ThemeInstall, installsEveryGoodPackageAndLeavesTheDeviceAloneAtEveryOther)
{
    InstallDesk desk;
    ASSERT_GE(archives().size(), 100U);
    for (const Archive &package : archives()) {
        EXPECT_EQ(messageOf([&] { Storage::inspectZip(archive(package.name.c_str())); }), package.inspection)
            << package.name;
        desk.install(package);
        desk.expectAllOrNothing(package.name);
        const bool foretold
            = package.installation == "*" ? !desk.failure.empty() : desk.failure == package.installation;
        EXPECT_TRUE(foretold) << package.name << ": " << desk.failure;
        EXPECT_EQ(fs::is_empty(desk.folder / "Backups"), !desk.failure.empty()) << package.name;
    }
}

TEST(ThemeInstall, takesTheDisksOwnNamesWhereCaseDoesNotCount)
{
    InstallDesk desk;
    desk.settings = {{"Themes/DAWN.cfg", "old"}, {"wps/dawn/Back.BMP", "old picture"}};
    desk.spelling = {{"themes/Dawn.cfg", "Themes/DAWN.cfg"}, {"wps/Dawn/back.bmp", "wps/dawn/Back.BMP"},
        {"wps/[a]*?.bmp", "wps/[a]__.bmp"}};
    const ExfatVolume disk(desk.root);
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    for (int call = 1; desk.install(named("odd-names.zip"), call); ++call) {
        desk.expectAllOrNothing("call " + std::to_string(call));
    }
    EXPECT_EQ(desk.failure, "");
    desk.expectAllOrNothing("no call");
    // The letter is a capital S, too, but not to the disk.
    for (const char *other : {"wps/ſ.bmp", "wps/t.bmp"}) {
        desk.settings = {{"wps/s.bmp", "s"}, {other, "other"}};
        desk.spelling = {};
        desk.install(named("long-s.zip"));
        EXPECT_EQ(desk.failure, "");
        desk.expectAllOrNothing(other);
    }
}

TEST(ThemeInstall, refusesAFolderWhereItHasAFileBeforeAnythingBegins)
{
    InstallDesk desk;
    for (const char *inside : {"themes/Dawn.cfg/x", "wps/Dawn/back.bmp/x"}) {
        desk.settings = {{inside, "mine"}};
        desk.install(named("plain.zip"));
        EXPECT_EQ(desk.failure, "Plik jest zajęty przez folder: " + fs::path(inside).parent_path().filename().string());
        desk.expectAllOrNothing(inside);
        EXPECT_TRUE(fs::is_empty(desk.folder / "Backups"));
    }
}

TEST(ThemeInstall, returnsWhenAllOfItIsOnTheMedium)
{
    static int unflushed = 0;
    static bool flushed = false;
    InstallDesk desk;
    desk.install(named("zip-9.zip"), 1, [] {
        diskCalls().renameat = [](int from, const char *name, int to, const char *newName) {
            return ++unflushed, ::renameat(from, name, to, newName);
        };
        static const auto exclusive = diskCalls().renameExclusive;
        diskCalls().renameExclusive = [](int from, const char *name, int to, const char *newName) {
            return ++unflushed, exclusive(from, name, to, newName);
        };
        diskCalls().syncfs = [](int descriptor) {
            flushed = std::exchange(unflushed, 0) > 0;
            return ::syncfs(descriptor);
        };
    });
    EXPECT_EQ(desk.failure, "");
    EXPECT_TRUE(flushed && unflushed == 0);
}
