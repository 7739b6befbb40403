#include "storage/Device.h"
#include "storage/DeviceAnchor.h"

#include "platform/volumes/Volumes.h"

#include "support/Testing.h"

TEST(DeviceInspection, readsWhatTheFolderSays)
{
    const TemporaryFolder folder;
    makeDevice(folder, "media/IPOD");
    makeDevice(folder, "media/IPOD/deeper");
    makeDevice(folder, "media/plain");
    Volumes::setMountFolders({folder / "media"}, [](const fs::path &path) { return path.filename() != "plain"; });
    const Device device = Device::inspect(folder / "media/IPOD");
    EXPECT_EQ(device.name, u"IPOD"_s);
    EXPECT_EQ(device.version, u"3.15"_s);
    EXPECT_TRUE(device.available > 0 && device.total >= device.available);
    EXPECT_TRUE(device.isVolume);
    EXPECT_TRUE(Device::inspect(folder / "media/IPOD/").isVolume);
    EXPECT_FALSE(Device::inspect(folder / "media/IPOD/deeper").isVolume);
    EXPECT_FALSE(Device::inspect(folder / "media/plain").isVolume);
    Volumes::setMountFolders({});
}

TEST(DeviceInspection, refusesWhatIsNoDevice)
{
    const TemporaryFolder folder;
    makeDevice(folder, "real");
    folder.write("file/.rockbox", "a file");
    fs::create_directories(folder / "empty");
    fs::create_directories(folder / "linked");
    fs::create_directory_symlink(folder / "real", folder / "link");
    fs::create_directory_symlink(folder / "real/.rockbox", folder / "linked/.rockbox");
    const std::string none = "Ten folder nie zawiera katalogu .rockbox.";
    const std::string link = "Folder urządzenia nie może być dowiązaniem symbolicznym.";
    const std::pair<const char *, std::string> rows[]
        = {{"empty", none}, {"missing", none}, {"file", none}, {"link", link}, {"link/", link}, {"linked", link}};
    for (const auto &[name, message] : rows) {
        EXPECT_EQ(messageOf([&] { (void)Device::inspect(folder / name); }), message) << name;
    }
    const Storage::DeviceAnchor device(folder / "real");
    std::filesystem::remove_all(folder / "real");
    EXPECT_EQ(messageOf([&] { (void)device.folder(""); }), none);
}

TEST(DeviceInspection, findsTheVersionInTheInfoFileOrNone)
{
    const TemporaryFolder folder;
    fs::create_directories(folder / "a/.rockbox");
    fs::create_directories(folder / "b/.rockbox/rockbox-info.txt");
    folder.write("c/.rockbox/rockbox-info.txt", "Version: 1\n" + std::string(2'000'000, 'x'));
    for (const char *name : {"a", "b", "c"}) {
        EXPECT_EQ(Device::inspect(folder / name).version, u"wersja nieznana"_s) << name;
    }
    const std::string unknown = "wersja nieznana";
    const std::pair<std::string, std::string> rows[] = {{"Target: x\r\nVersion: 3.15\r\nMemory: 64\r\n", "3.15"},
        {"Version:", ""}, {"Version: Version: x", "x"}, {"Version:\t a b \nVersion: later", "a b"},
        {"x\xC2\x85Version: next line", "next line"}, {"x\xE2\x80\xA8Version: line separator", "line separator"},
        {"version: 3.15", unknown}, {" Version: 3.15", unknown}, {"Version: \xFF", unknown}, {"", unknown}};
    for (const auto &[bytes, version] : rows) {
        EXPECT_EQ(Device::versionFrom(QByteArray::fromStdString(bytes)).toStdString(), version) << bytes;
    }
}
