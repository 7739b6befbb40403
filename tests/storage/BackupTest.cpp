#include "storage/Backup.h"

#include "support/Testing.h"

#include <sys/stat.h>

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
    std::string failure(const fs::path &destination) const
    {
        return failureOf([&] { (void)Storage::backup(Storage::DeviceAnchor(folder / "IPOD"), folder / destination); });
    }
    bool isComplete(const fs::path &destination) const
    {
        auto copied = filesBelow(folder / destination);
        const std::string readMe = copied.extract("README.txt").mapped();
        return copied == settings && fs::exists(folder / destination / "icons/empty")
            && readMe.ends_with(" +0000\nUrządzenie: IPOD\nNie zawiera muzyki ani firmware.\n");
    }
};

} // namespace

TEST(Backup, isACopyAndRefusesADestinationOnTheDeviceOrOneThatIsTaken)
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
    EXPECT_TRUE(desk.isComplete("IPOD2/b"));
}

TEST(Backup, refusesLinksAndSpecialFiles)
{
    for (const fs::path place : {"config.cfg", "themes", "wps/a/link", "icons/empty/link", "themes/pipe"}) {
        const BackupDesk desk;
        const fs::path item = desk.device / place;
        fs::remove_all(item);
        ASSERT_EQ(place == "themes/pipe" ? ::mkfifo(item.c_str(), 0600) : ::symlink("/etc", item.c_str()), 0);
        EXPECT_NE(desk.failure("Backups/new"), "") << place;
        EXPECT_TRUE(fs::is_empty(desk.folder / "Backups"));
    }
}

TEST(Backup, hasTheSizeOfItsFilesWithoutWhatLinksLeadTo)
{
    const TemporaryFolder folder;
    folder.write("outside", std::string(1000, 'x'));
    folder.write("backup/README.txt", "12345");
    folder.write("backup/themes/deep/er/.hidden", std::string(70000, 'x'));
    fs::create_symlink("../outside", folder / "backup/link");
    fs::create_directory_symlink("..", folder / "backup/round");
    EXPECT_EQ(Storage::backupSize(folder / "backup", {}), 70005);
    for (const char *none : {"backup/round", "outside", "missing"}) {
        EXPECT_EQ(Storage::backupSize(folder / none, {}), std::nullopt) << none;
    }
}
