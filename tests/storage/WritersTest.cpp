#include "storage/Writers.h"
#include "storage/Digest.h"
#include "storage/FileChanges.h"

#include "support/FailingDisk.h"
#include "support/Testing.h"

#include "platform/files/FileWriting.h"

#include <QScopeGuard>

#include <sys/resource.h>

#include <csignal>

namespace {

using FileMap = std::map<std::string, std::string>;

} // namespace

TEST(WriteAtomically, leavesTheOldFileOnAFullDisk)
{
    const TemporaryFolder folder;
    folder.write("file", "old");
    // No file grows past 100,000 bytes: the kernel's answer is that of a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto restore = qScopeGuard([limit] { ::setrlimit(RLIMIT_FSIZE, &limit); });
    limit.rlim_cur = 100'000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_NE(failureOf([&] { Files::writeAtomically(folder / "file", QByteArray(300'000, 'x')); }), "");
    EXPECT_EQ(filesBelow(folder.path()), (FileMap {{"file", "old"}}));
}

TEST(WriteAtomically, refusesFoldersAndReplacesLinksNotTheirTargets)
{
    const TemporaryFolder folder;
    folder.write("target", "precious");
    fs::create_symlink("target", folder / "link");
    Files::writeAtomically(folder / "link", QByteArray("new"));
    EXPECT_FALSE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(fileBytes(folder / "target"), "precious");
    folder.write("folder/inside", "x");
    EXPECT_NE(failureOf([&] { Files::writeAtomically(folder / "folder", QByteArray("new")); }), "");
    EXPECT_NE(failureOf([&] { Files::writeAtomically(folder / "missing/file", QByteArray("new")); }), "");
    EXPECT_FALSE(holdsPartialFile(folder.path()));
    EXPECT_EQ(fileBytes(folder / "folder/inside"), "x");
}

TEST(CopyAudioBytes, copiesEverySizeAroundABlock)
{
    for (const std::size_t size : {0UL, 1UL, 0xFFFFFUL, 0x100000UL, 0x100001UL, 0x2800000UL}) {
        const TemporaryFolder folder;
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = char(i * 31 % 251);
        }
        folder.write("source", bytes);
        Storage::copyAudioBytes(folder / "source", folder / "copy");
        EXPECT_TRUE(fileBytes(folder / "copy") == bytes) << size;
        EXPECT_NE(failureOf([&] { Storage::copyAudioBytes(folder / "source", folder / "copy"); }), ""); // it is there
    }
}

TEST(Digest, isTheStandards)
{
    const TemporaryFolder folder;
    // FIPS 180-4 example: a million times "a"; the other size ends with a block.
    const std::pair<std::size_t, const char *> rows[]
        = {{1'000'000, "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
            {0x100000, "9bc1b2a288b26af7257a36277ae3816a7d4f16e89c1e7e77d0a5c48bad62b360"}};
    for (const auto &[size, digest] : rows) {
        const Sha256::Digest made = Storage::digest(folder.write("file", std::string(size, 'a')));
        const QByteArray raw(reinterpret_cast<const char *>(made.data()), qsizetype(made.size()));
        EXPECT_EQ(raw.toHex(), digest) << size;
    }
    EXPECT_NE(failureOf([&] { (void)Storage::digest(folder.path()); }), "");
}

TEST(FileChanges, replaceNothingThatAppearsAtAFreeName)
{
    static const TemporaryFolder folder;
    static const auto appear = [] { folder.write("IPOD/Music/file", "theirs"); };
    const auto appearBeforeTheRename = [] {
        std::filesystem::remove(folder / "IPOD/Music/file");
        diskCalls().renameat = [](int from, const char *name, int to, const char *newName) {
            return appear(), DiskCalls::system().renameat(from, name, to, newName);
        };
        diskCalls().renameExclusive = [](int from, const char *name, int to, const char *newName) {
            return appear(), DiskCalls::system().renameExclusive(from, name, to, newName);
        };
    };
    makeDevice(folder, "IPOD");
    for (const bool undone : {false, true}) {
        const auto file = folder.write("IPOD/Music/file", "old");
        const auto copy = folder.write("copy", "old");
        const Storage::DeviceAnchor device(folder / "IPOD");
        const FailingDisk disk(undone ? 0 : 1, EIO, FailingDisk::Fault::EventAfter, appearBeforeTheRename);
        {
            Storage::FileChanges changes(device, [&](const auto &) { return copy; });
            if (undone) {
                changes.remove(file);
                appearBeforeTheRename();
            } else {
                EXPECT_EQ(failureOf([&] { changes.write("new", file); }), "File exists: file");
            }
        }
        EXPECT_EQ(fileBytes(file), "theirs") << undone;
    }
}
