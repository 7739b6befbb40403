// What the archives made for the tests are held to is with the install of themes.
#include "storage/ZipInspection.h"
#include "storage/ZipUnpacking.h"

#include "support/Archives.h"
#include "support/Messages.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

TEST(ZipInspection, refusesEveryTruncationAndSurvivesEveryChangedByte)
{
    const TemporaryFolder folder;
    const std::string whole = fileBytes(archive("letters.zip"));
    const auto message = [&](const std::string &bytes) {
        return messageOf([zip = folder.write("zip", bytes)] { Storage::inspectZip(zip); });
    };
    ASSERT_EQ(message(whole), "");
    int refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        EXPECT_EQ(message(whole.substr(0, at)), "Nieprawidłowa lub niebezpieczna paczka ZIP.") << at;
        std::string changed = whole;
        changed[at] = char(~changed[at]);
        refused += message(changed).empty() ? 0 : 1;
    }
    EXPECT_GT(refused, 300); // signatures, names and lengths; times, checksums and content are not looked at
}

TEST(ZipInspection, waitsForNoPipeAndReportsWhatCannotBeRead)
{
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char *name : {"pipe", "", "missing", "/dev/zero"}) {
        EXPECT_THROW(Storage::inspectZip(folder / name), std::system_error) << name;
    }
}

TEST(ZipListing, isHeldAgainstItsRulesInTheirOrder)
{
    const std::string crowded = "Paczka jest pusta lub zawiera zbyt wiele plików.";
    const std::string unsafe = "Paczka ZIP zawiera niebezpieczną ścieżkę.";
    const QString most = QStringLiteral("a\n\n").repeated(5000);
    const std::pair<QString, std::string> rows[] = {{most, ""}, {most + QStringLiteral("../b"), crowded}, {{}, crowded},
        {QStringLiteral("\n\n"), crowded}, {QStringLiteral("a..b/c...\n.../.x/..y/"), ""},
        {QStringLiteral("a\n/b"), unsafe}, {QStringLiteral("a\\b"), unsafe}, {QStringLiteral(".."), unsafe},
        {QStringLiteral("a/.."), unsafe}, {QStringLiteral("../a"), unsafe}, {QStringLiteral("a//..//b"), unsafe},
        {QStringLiteral("a\r\nb"), unsafe}, {QStringLiteral("a") + QChar(u'\0'), unsafe}};
    for (const auto &[listing, message] : rows) {
        EXPECT_EQ(messageOf([text = listing] { Storage::validateZipListing(text); }), message) << listing.first(9);
    }
}

TEST(ZipUnpacking, givesWhatItsOwnerAloneCanReadAndRemove)
{
    for (const char *name : {"no-permissions.zip", "setuid.zip"}) {
        const TemporaryFolder folder;
        const std::filesystem::path unpacked = Storage::unpackZip(archive(name), folder.path());
        ASSERT_TRUE(std::filesystem::exists(unpacked / ".rockbox/wps/Dawn/back.bmp"));
        for (const auto &item : std::filesystem::recursive_directory_iterator(unpacked)) {
            const unsigned mode = unsigned(item.status().permissions());
            EXPECT_EQ(mode & 07600, 0600U) << item.path();
            EXPECT_TRUE(!item.is_directory() || (mode & 0100) != 0) << item.path();
        }
    }
}
