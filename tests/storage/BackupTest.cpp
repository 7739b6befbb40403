#include "storage/Backup.h"

#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

/// A device with settings and a computer's folder for backups.
struct BackupDesk {
    TemporaryFolder folder;
    fs::path device = folder / "IPOD/.rockbox";
    std::map<std::string, std::string> settings {{"config.cfg", "volume: -20"}, {"themes/a.cfg", ""}, {"wps/a/.b", "b"},
        {"wps/b/c", "c"}, {"fonts/f", std::string(0x40000, 'f')}, {"eqs/e", std::string(0x40001, 'e')}};

    BackupDesk()
    {
        makeDevice(folder, "IPOD");
        for (const auto &[name, bytes] : settings) {
            folder.write("IPOD/.rockbox/" + name, bytes);
        }
        fs::create_directories(device / "icons/empty");
        fs::create_directories(folder / "Backups");
    }
    std::string failure(const fs::path &destination = "Backups/new") const
    {
        return failureOf([&] { Storage::backup(folder / "IPOD", folder / destination); });
    }
    bool nothingWasMade() const { return fs::is_empty(folder / "Backups"); }
    bool isComplete() const
    {
        auto copied = filesBelow(folder / "Backups/new");
        const std::string readMe = copied.extract("README.txt").mapped();
        return copied == settings && fs::exists(folder / "Backups/new/icons/empty")
            && readMe.ends_with(" +0000\nUrządzenie: IPOD\nNie zawiera muzyki ani firmware.\n");
    }
};

} // namespace

TEST(Backup, refusesADestinationOnTheDeviceOrOneThatIsTaken)
{
    const BackupDesk desk;
    fs::create_directory(desk.folder / "IPOD2");
    fs::create_directory_symlink(desk.device / "wps", desk.folder / "link");
    fs::create_symlink("nowhere", desk.folder / "dangling");
    const std::string onDevice = "Zapisz kopię poza iPodem.";
    for (const auto &[place, failure] : std::map<std::string, std::string> {{"IPOD/", onDevice}, {"link/b", onDevice},
             {"IPOD2/../IPOD/.rockbox/b", onDevice}, {"IPOD2", "Folder kopii już istnieje."},
             {"dangling", "Folder kopii już istnieje."}, {"IPOD2/b", ""}}) {
        EXPECT_EQ(desk.failure(place), failure) << place;
    }
}

TEST(Backup, refusesLinksAndSpecialFiles)
{
    for (const fs::path place : {"config.cfg", "themes", "wps/a/link", "icons/empty/link", "themes/pipe"}) {
        const BackupDesk desk;
        const fs::path item = desk.device / place;
        fs::remove_all(item);
        ASSERT_EQ(place == "themes/pipe" ? ::mkfifo(item.c_str(), 0600) : ::symlink("/etc", item.c_str()), 0);
        EXPECT_NE(desk.failure(), "") << place;
        EXPECT_TRUE(desk.nothingWasMade());
    }
}

TEST(Backup, isWholeOrNotThereWhateverHappensAtWhicheverCall)
{
    for (const FailingDisk::Fault fault : {FailingDisk::Fault::Refused, FailingDisk::Fault::Event}) {
        for (int failAt = 1, reached = true; reached; ++failAt) {
            const BackupDesk desk;
            const auto plant = [&] {
                for (const std::string name : {"a", "b"}) { // the one that is copied later is a link by then
                    fs::rename(desk.device / "wps" / name, desk.device / ("moved " + name));
                    fs::create_directory_symlink("../fonts", desk.device / "wps" / name);
                }
            };
            const FailingDisk disk(failAt, EIO, fault, plant);
            const std::string failure = desk.failure();
            reached = FailingDisk::reached();
            // Without a file's time or the name's syncing it is whole all the same.
            EXPECT_TRUE(failure.empty() ? desk.isComplete() : desk.nothingWasMade()) << "call " << failAt << failure;
            ASSERT_TRUE(reached || failure.empty()) << failAt;
        }
    }
}
