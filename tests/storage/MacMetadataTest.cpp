#include "storage/MacMetadata.h"

#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SavedOnComputer.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <functional>
#include <set>

namespace {

std::string appleDouble(std::size_t size = 4096)
{
    return std::string("\0\5\x16\7\0\2\0\0Mac OS X", 16).append(size, 'x').substr(0, size);
}

} // namespace

TEST(MacMetadata, isOnlyWhatSurelyIs)
{
    const TemporaryFolder folder;
    makeDevice(folder, "IPOD");
    const std::filesystem::path music = folder / "IPOD/Music";
    for (const char *item :
        {"a", "b", "e", "p", "._", "._lone", "._f", "._out", "../.rockbox/c", "../.rockbox/._c", "../d/e", "../d/._e",
            "../g", "../._g", "sub/y", "sub/._y", "../MUSIC 2/x", "../MUSIC 2/._x", "../../Mac/._link"}) {
        folder.write(music / item, appleDouble());
    }
    folder.write(music / "._a", "other content");
    folder.write(music / "._b", appleDouble(3));
    std::filesystem::create_symlink("a", music / "._e");
    std::filesystem::create_symlink("a", music / "f");
    std::filesystem::create_symlink("../IPOD/Music/a", folder / "Mac/link");
    std::filesystem::create_symlink("../../Mac/._link", music / "out");
    std::filesystem::create_directory_symlink("../d", music / "linked");
    std::filesystem::create_directory_symlink("d", folder / "IPOD/music linked");
    ASSERT_EQ(::mkfifo((music / "._p").c_str(), 0600), 0);
    const auto found = Storage::macMetadataFiles(folder / "IPOD");
    EXPECT_EQ(std::set(found.begin(), found.end()), (std::set {music / "sub/._y", folder / "IPOD/MUSIC 2/._x"}));

    // Of a candidate it is removed whether the candidate exists or not, but never outside the device.
    const std::vector candidates {music / "lone", folder / "Mac/link", music / "out", music / "a", music / "lone"};
    const FailingDisk disk(0);
    diskCalls().renameExclusive = [](int, const char *, int, const char *) {
        return errno = ENOSPC, -1; // a full disk has no room for another name
    };
    EXPECT_EQ(Storage::cleanupMacMetadata(folder / "IPOD", folder / "Mac", candidates), 1);
    EXPECT_FALSE(exists(music / "._lone"));
}

TEST(MacMetadata, isNeverDeletedUnsavedWhateverHappensAtWhicheverCall)
{
    using Fault = FailingDisk::Fault;
    struct Row {
        Fault fault;
        std::function<void(const std::filesystem::path &)> event; ///< what another program does in this folder
    };
    const auto unplug = [](const std::filesystem::path &desk) { remove_all(desk / "IPOD/.rockbox"); };
    const auto replace = [](const std::filesystem::path &desk) {
        if (exists(desk / "IPOD/Music/._song.flac")) {
            std::filesystem::rename(desk / "IPOD/Music/._song.flac", desk / "old");
        }
        std::filesystem::rename(desk / "mine", desk / "IPOD/Music/._song.flac");
    };
    const auto plantLink = [](const std::filesystem::path &desk) {
        std::filesystem::rename(desk / "IPOD/Music", desk / "IPOD/moved");
        create_directory_symlink("../outside", desk / "IPOD/Music");
    };
    const auto exchange = [](const std::filesystem::path &desk) {
        std::filesystem::rename(desk / "IPOD", desk / "gone");
        std::filesystem::rename(desk / "other", desk / "IPOD");
    };
    for (const Row &row :
        std::vector<Row> {{Fault::Refused, {}}, {Fault::Late, {}}, {Fault::Dead, {}}, {Fault::Event, unplug},
            {Fault::EventAfter, replace}, {Fault::Event, plantLink}, {Fault::Event, exchange}}) {
        bool reached = true;
        for (int failAt = 1; reached; ++failAt) {
            const TemporaryFolder folder("/dev/shm"); // thousands of files
            std::set<std::string> contents {"mine"};
            folder.write("mine", "mine");
            makeDevice(folder, "IPOD");
            makeDevice(folder, "other");
            for (const std::string music : {"IPOD/Music", "outside", "other/Music"}) {
                for (const std::string name : {"song.flac", "\xE9.mp3"}) {
                    const std::size_t size = name == "song.flac" ? 1'100'000 : 4096;
                    const std::string bytes = appleDouble(size) + std::string(music).append(name);
                    folder.write(music + "/._" + name, bytes);
                    folder.write(music + "/" + name, "audio");
                    contents.insert(bytes);
                }
            }
            const FailingDisk disk(failAt, EIO, row.fault, [&] { row.event(folder.path()); });
            const auto clean = [&] { return Storage::cleanupMacMetadata(folder / "IPOD", folder / "Mac"); };
            const std::string failure = failureOf(clean);
            reached = FailingDisk::reached();
            EXPECT_TRUE(reached == !failure.empty() || row.event) << "call " << failAt << failure;
            std::map<std::filesystem::path, std::string> kept = savedOnComputer(folder / "Mac");
            for (const auto &[name, bytes] : filesBelow(folder.path())) {
                if (!name.starts_with("Mac/")) {
                    kept[name] = bytes;
                }
            }
            for (const auto &[name, bytes] : kept) {
                contents.erase(bytes);
            }
            EXPECT_TRUE(contents.empty()) << "call " << failAt << ": " << contents.size() << " lost; " << failure;
            EXPECT_EQ(filesBelow(folder / "outside").size(), 4U);
            EXPECT_EQ(filesBelow(folder / (exists(folder / "gone") ? "IPOD" : "other")).size(), 5U);
            if (!reached) {
                EXPECT_GT(failAt, 15);
                EXPECT_EQ(clean(), 0);
                EXPECT_EQ(filesBelow(folder / "Mac").size(), 3U);
            }
        }
    }
}
