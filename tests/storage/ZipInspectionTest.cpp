// What the archives made for the tests are held to is with the install of themes.
#include "storage/ZipInspection.h"
#include "storage/FolderTree.h"
#include "storage/ScratchFolder.h"
#include "storage/ZipUnpacking.h"

#include "support/Archives.h"
#include "support/ExfatVolume.h"
#include "support/Testing.h"

#include <sys/resource.h>
#include <unistd.h>

TEST(ZipInspection, refusesEveryTruncation)
{
    const TemporaryFolder folder;
    const std::string whole = fileBytes(archive("letters.zip"));
    const auto message = [&](const std::string &bytes) {
        return messageOf([zip = folder.write("zip", bytes)] { Storage::inspectZip(zip); });
    };
    ASSERT_EQ(message(whole), "");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        EXPECT_EQ(message(whole.substr(0, at)), "Nieprawidłowa lub niebezpieczna paczka ZIP.") << at;
    }
}

TEST(ZipListing, isHeldAgainstItsRulesInTheirOrder)
{
    const std::string crowded = "Paczka jest pusta lub zawiera zbyt wiele plików.";
    const std::string unsafe = "Paczka ZIP zawiera niebezpieczną ścieżkę.";
    const QString most = u"a\n\n"_s.repeated(5000);
    const std::pair<QString, std::string> rows[] = {{most, ""}, {most + u"../b"_s, crowded}, {{}, crowded},
        {u"\n\n"_s, crowded}, {u"a..b/c...\n.../.x/..y/"_s, ""}, {u"a\n/b"_s, unsafe}, {u"a\\b"_s, unsafe},
        {u".."_s, unsafe}, {u"a/.."_s, unsafe}, {u"../a"_s, unsafe}, {u"a//..//b"_s, unsafe}, {u"a\r\nb"_s, unsafe},
        {u"a"_s + QChar(u'\0'), unsafe}};
    for (const auto &[listing, message] : rows) {
        EXPECT_EQ(messageOf([text = listing] { Storage::validateZipListing(text); }), message) << listing.first(9);
    }
}

namespace {

/// To root no mode is an obstacle: while it lives, the test is another user, whom `folder` belongs to.
class PlainUser {
public:
    explicit PlainUser(const fs::path &folder)
    {
        constexpr uid_t nobody = 65534;
        if (m_root) {
            EXPECT_EQ(::chown(folder.c_str(), nobody, nobody) | ::seteuid(nobody), 0);
        }
    }
    ~PlainUser() { EXPECT_EQ(m_root ? ::seteuid(0) : 0, 0); }
    PlainUser(const PlainUser &) = delete;
    PlainUser &operator=(const PlainUser &) = delete;

private:
    const bool m_root = ::geteuid() == 0;
};

} // namespace

TEST(ZipUnpacking, givesWhatItsOwnerAloneCanReadAndRemove)
{
    for (const char *name : {"no-permissions.zip", "setuid.zip"}) {
        const TemporaryFolder folder("/tmp"); // the folder of the run may be for one user alone
        const auto zip = folder.write("zip", fileBytes(archive(name)));
        const TemporaryFolder temporary("/tmp");
        fs::permissions(folder.path(), fs::perms(0755));
        const fs::path before = fs::temp_directory_path();
        const PlainUser user(temporary.path());
        ::setenv("TMPDIR", temporary.path().c_str(), 1);
        const Storage::ScratchFolder scratch;
        ::setenv("TMPDIR", before.c_str(), 1);
        const fs::path unpacked = Storage::unpackZip(zip, scratch.path()).folder;
        for (const fs::path &own : {scratch.path(), unpacked}) {
            EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all) << own;
        }
        ASSERT_TRUE(fs::exists(unpacked / ".rockbox/wps/Dawn/back.bmp"));
        for (const auto &item : fs::recursive_directory_iterator(unpacked)) {
            const unsigned mode = unsigned(item.status().permissions());
            EXPECT_EQ(mode & 07600, 0600U) << item.path();
            EXPECT_TRUE(!item.is_directory() || (mode & 0100) != 0) << item.path();
        }
    }
}

TEST(ZipUnpacking, trustsTheToolInNothing)
{
    const rlimit few {.rlim_cur = 1024, .rlim_max = 1024};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    const std::string bad = "Nieprawidłowa lub niebezpieczna paczka ZIP.";
    const std::string link = "Paczka zawiera dowiązanie symboliczne.";
    const std::string nextLevel = "mkdir d && cd d && ";
    std::string deep;
    for (int level = 0; level < 1100; ++level) {
        deep += nextLevel;
    }
    struct Row {
        std::string listed; ///< what the tool does behind its list
        std::string unpacked; ///< and behind what it unpacks
        std::string message;
    };
    const Row rows[]
        = {{"", "", ""}, {"echo more", "", bad}, {"printf '\\377'", "", "Nie można odczytać nazw plików w paczce."},
            {"seq 1000; echo reason >&2; exit 1", "", "reason\n"}, {"", "echo >more", bad},
            {"", "rm .rockbox/themes/Dawn.cfg", bad}, {"", "ln -s / .rockbox/wps/x", link},
            {"", deep + "ln -s / x", link}, {"", "mv .rockbox .r && ln -s .r .rockbox", link},
            {"", "mkfifo x", "Paczka zawiera dowiązanie lub plik specjalny."}};
    const std::string path = ::getenv("PATH");
    for (const Row &row : rows) {
        const TemporaryFolder folder;
        fs::create_directory(folder / "scratch");
        const auto tool = folder.write("tools/unzip",
            "#!/bin/sh\nPATH=${PATH#*:}\nunzip \"$@\" || exit\nif [ $1 = -Z1 ]\nthen :\n" + row.listed
                + "\nelse :\ncd unpacked && " + (row.unpacked.empty() ? ":" : row.unpacked) + "\nfi\n");
        fs::permissions(tool, fs::perms::owner_all);
        ::setenv("PATH", ((folder / "tools").string() + ":" + path).c_str(), 1);
        EXPECT_EQ(messageOf([&] { (void)Storage::unpackZip(archive("plain.zip"), folder / "scratch"); }), row.message)
            << row.listed << row.unpacked.substr(0, 40);
        Storage::removeTree(folder / "scratch");
        EXPECT_FALSE(fs::exists(folder / "scratch"));
    }
    ::setenv("PATH", path.c_str(), 1);
}

TEST(ZipUnpacking, namesTheComputersDiskWhereItIsFull)
{
    const TemporaryFolder folder;
    const ExfatVolume disk(folder / "scratch", 8 << 20);
    if (!disk.available()) {
        GTEST_SKIP() << disk.reason();
    }
    EXPECT_EQ(messageOf([&] { (void)Storage::unpackZip(archive("100-MiB.zip"), disk.mountPoint()); }),
        "Na dysku komputera zabrakło miejsca.");
}
