#include "storage/MacMetadata.h"

#include "platform/files/Files.h"

#include "support/FailingDisk.h"
#include "support/Testing.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>

#include <set>

namespace {

std::string appleDouble(std::size_t size = 4096)
{
    return std::string("\0\5\x16\7\0\2\0\0Mac OS X", 16).append(size, 'x').substr(0, size);
}

/// What the manifests below a backup root say is saved: the file's path on the device, and the bytes of its copy.
std::map<fs::path, std::string> savedOnComputer(const fs::path &backupRoot)
{
    std::map<fs::path, std::string> saved;
    const auto files = filesBelow(backupRoot);
    for (const auto &[name, bytes] : files) {
        const QJsonObject manifest = QJsonDocument::fromJson(QByteArray::fromStdString(bytes)).object();
        for (auto copy = manifest.begin(); copy != manifest.end(); ++copy) {
            const fs::path set = fs::path(name).parent_path();
            saved[Files::fromText(copy->toString())] = files.at(set / Files::fromText(copy.key()));
        }
    }
    return saved;
}

} // namespace

TEST(MacMetadata, isOnlyWhatSurelyIs)
{
    const TemporaryFolder folder;
    makeDevice(folder, "IPOD");
    const fs::path music = folder / "IPOD/Music";
    for (const char *item :
        {"a", "b", "e", "p", "._", "._lone", "._f", "._out", "../.rockbox/c", "../.rockbox/._c", "../d/e", "../d/._e",
            "../g", "../._g", "sub/y", "sub/._y", "../MUSIC 2/x", "../MUSIC 2/._x", "../../Mac/._link"}) {
        folder.write(music / item, appleDouble());
    }
    folder.write(music / "._a", "other content");
    folder.write(music / "._b", appleDouble(3));
    fs::create_symlink("a", music / "._e");
    fs::create_symlink("a", music / "f");
    fs::create_symlink("../IPOD/Music/a", folder / "Mac/link");
    fs::create_symlink("../../Mac/._link", music / "out");
    fs::create_directory_symlink("../d", music / "linked");
    fs::create_directory_symlink("d", folder / "IPOD/music linked");
    ASSERT_EQ(::mkfifo((music / "._p").c_str(), 0600), 0);
    const Storage::DeviceAnchor device(folder / "IPOD");
    const auto found = Storage::macMetadataFiles(device);
    EXPECT_EQ(std::set(found.begin(), found.end()), (std::set {music / "sub/._y", folder / "IPOD/MUSIC 2/._x"}));

    // Of a candidate it is removed whether the candidate exists or not, but never outside the device.
    const std::vector candidates {music / "lone", folder / "Mac/link", music / "out", music / "a", music / "lone"};
    const FailingDisk disk(0);
    diskCalls().renameExclusive = [](int, const char *, int, const char *) {
        return errno = ENOSPC, -1; // a full disk has no room for another name
    };
    EXPECT_EQ(Storage::cleanupMacMetadata(device, folder / "Mac", candidates).removed, 1);
    EXPECT_FALSE(exists(music / "._lone"));
    EXPECT_EQ(savedOnComputer(folder / "Mac"), (std::map<fs::path, std::string> {{music / "._lone", appleDouble()}}));
}
