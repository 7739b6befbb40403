#include "storage/MacMetadata.h"

#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SavedOnComputer.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

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
    EXPECT_EQ(Storage::cleanupMacMetadata(folder / "IPOD", folder / "Mac", candidates), 1);
    EXPECT_FALSE(exists(music / "._lone"));
}

TEST(MacMetadata, isNeverDeletedUnsavedWhateverHappensAtWhicheverCall)
{
    using Fault = FailingDisk::Fault;
    // mkdir and fsync of two folders, 5 calls for each copy and for the manifest, an fsync, two removals
    constexpr int calls = 4 + 2 * 5 + 5 + 1 + 2;
    for (const Fault fault : {Fault::Refused, Fault::Late, Fault::Dead, Fault::Event}) {
        bool reached = true;
        for (int failAt = 1; reached; ++failAt) {
            const TemporaryFolder folder;
            makeDevice(folder, "IPOD");
            std::map<std::filesystem::path, std::string> companions;
            for (const std::string name : {"song.flac", "\xE9.mp3"}) {
                folder.write("IPOD/Music" / std::filesystem::path(name), "audio");
                companions[folder.write("IPOD/Music/._" + name, appleDouble(2'500'000))] = appleDouble(2'500'000);
            }
            const FailingDisk disk(failAt, EIO, fault, [&] { remove_all(folder / "IPOD/.rockbox"); });
            const auto clean = [&] { return Storage::cleanupMacMetadata(folder / "IPOD", folder / "Mac"); };
            const std::string failure = failureOf(clean);
            reached = FailingDisk::reached();
            const auto left
                = std::count_if(companions.begin(), companions.end(), [](auto &c) { return exists(c.first); });
            EXPECT_EQ(failure.empty(), !reached || (fault == Fault::Event && failAt == calls)) << failAt << failure;
            EXPECT_TRUE(left == 2 || savedOnComputer(folder / "Mac") == companions) << "call " << failAt;
            if (!reached) {
                EXPECT_EQ(failAt, calls + 1);
                EXPECT_EQ(clean(), 0);
                EXPECT_EQ(filesBelow(folder / "Mac").size(), 3U);
            }
        }
    }
}
