#include "storage/Writers.h"
#include "storage/Digest.h"

#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>

namespace {

/// As long as it lives, no file grows past 100,000 bytes: the kernel's answer is that of a full disk.
class SmallDisk {
public:
    SmallDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit {.rlim_cur = 100'000, .rlim_max = m_before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~SmallDisk() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

private:
    rlimit m_before {};
};

using FileMap = std::map<std::string, std::string>;

} // namespace

TEST(WriteBytes, leavesTheOldFileOrTheNewWhicheverCallFails)
{
    for (const FileMap &before : {FileMap {}, FileMap {{"file", "old"}}}) {
        for (int failAt = 1;; ++failAt) {
            const TemporaryFolder folder;
            for (const auto &[name, bytes] : before) {
                folder.write(name, bytes);
            }
            const FailingDisk disk(failAt);
            const std::string failure = failureOf([&] { Storage::writeBytes("new bytes", folder / "file"); });
            EXPECT_EQ(failure.empty(), !FailingDisk::reached()) << "call " << failAt;
            if (!FailingDisk::reached()) {
                ASSERT_GT(failAt, 4); // open, write, fsync, close, rename
                EXPECT_EQ(filesBelow(folder.path()), (FileMap {{"file", "new bytes"}}));
                break;
            }
            EXPECT_EQ(filesBelow(folder.path()), before) << "call " << failAt;
        }
    }
    const TemporaryFolder folder;
    folder.write("file", "old");
    const SmallDisk disk;
    EXPECT_NE(failureOf([&] { Storage::writeBytes(QByteArray(300'000, 'x'), folder / "file"); }), "");
    EXPECT_EQ(filesBelow(folder.path()), (FileMap {{"file", "old"}}));
}

TEST(WriteBytes, refusesFoldersAndReplacesLinksNotTheirTargets)
{
    const TemporaryFolder folder;
    folder.write("target", "precious");
    std::filesystem::create_symlink("target", folder / "link");
    Storage::writeBytes("new", folder / "link");
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(fileBytes(folder / "target"), "precious");
    folder.write("folder/inside", "x");
    EXPECT_NE(failureOf([&] { Storage::writeBytes("new", folder / "folder"); }), "");
    EXPECT_NE(failureOf([&] { Storage::writeBytes("new", folder / "missing/file"); }), "");
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
    }
}

TEST(CopyAudioBytes, neverTouchesWhatIsThere)
{
    const TemporaryFolder folder;
    folder.write("source", "new");
    folder.write("taken", "old");
    folder.write("target", "precious");
    std::filesystem::create_symlink("target", folder / "link");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
    const auto before = filesBelow(folder.path());
    for (const char *name : {"taken", "link", "dangling", "missing/file"}) {
        EXPECT_NE(failureOf([&] { Storage::copyAudioBytes(folder / "source", folder / name); }), "") << name;
    }
    EXPECT_NE(failureOf([&] { Storage::copyAudioBytes(folder / "nothing", folder / "copy"); }), "");
    EXPECT_EQ(filesBelow(folder.path()), before);
}

TEST(CopyAudioBytes, reportsEveryFailureAndKeepsTheSource)
{
    const TemporaryFolder folder;
    const std::string bytes(2'500'000, 'x');
    const auto source = folder.write("source", bytes);
    const auto copy = [&](int number) {
        return failureOf([&] { Storage::copyAudioBytes(source, folder / std::to_string(number)); });
    };
    for (int failAt = 1; failAt <= 5; ++failAt) { // open, three blocks, fsync
        const FailingDisk disk(failAt);
        EXPECT_NE(copy(failAt), "") << "call " << failAt;
        EXPECT_TRUE(FailingDisk::reached());
    }
    const FailingDisk disk(6);
    EXPECT_EQ(copy(6), "");
    EXPECT_FALSE(FailingDisk::reached());
    const SmallDisk small;
    EXPECT_NE(copy(7), "");
    EXPECT_TRUE(fileBytes(source) == bytes);
}

TEST(Digest, isTheStandards)
{
    const TemporaryFolder folder;
    // FIPS 180-4 examples: the empty text, "abc", and a million times "a", which spans blocks with the size below.
    const std::pair<std::string, const char *> rows[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
        {std::string(0x100000, 'a'), "9bc1b2a288b26af7257a36277ae3816a7d4f16e89c1e7e77d0a5c48bad62b360"},
    };
    for (const auto &[bytes, digest] : rows) {
        const Sha256::Digest made = Storage::digest(folder.write("file", bytes));
        const QByteArray raw(reinterpret_cast<const char *>(made.data()), qsizetype(made.size()));
        EXPECT_EQ(raw.toHex(), digest) << bytes.size();
    }
    EXPECT_NE(failureOf([&] { (void)Storage::digest(folder / "missing"); }), "");
    EXPECT_NE(failureOf([&] { (void)Storage::digest(folder.path()); }), "");
}
