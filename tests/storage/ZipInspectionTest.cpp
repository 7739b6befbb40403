#include "storage/ZipInspection.h"
#include "storage/ZipUnpacking.h"

#include "support/Archives.h"
#include "support/Messages.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

TEST(ZipInspection, takesEveryGoodArchiveAndRefusesEachHostileOneWithItsReason)
{
    EXPECT_GE(archives().size(), 75U);
    for (const Archive &archive : archives()) {
        EXPECT_EQ(messageOf([&] { Storage::inspectZip(archive.path); }), archive.inspection) << archive.name;
    }
}

TEST(ZipInspection, refusesEveryTruncationAndSurvivesEveryChangedByte)
{
    const TemporaryFolder folder;
    const std::string whole = fileBytes(std::filesystem::path(MARLUNE_ARCHIVES) / "letters.zip");
    const std::filesystem::path zip = folder.write("zip", whole);
    ASSERT_EQ(messageOf([&] { Storage::inspectZip(zip); }), "");
    std::fstream file(zip, std::ios::in | std::ios::out | std::ios::binary);
    const auto put = [&file](std::size_t at, int byte) {
        file.seekp(std::streamoff(at)).put(char(byte)).flush();
        ASSERT_TRUE(file);
    };
    int refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        put(at, ~whole[at]);
        refused += messageOf([&] { Storage::inspectZip(zip); }).empty() ? 0 : 1;
        put(at, whole[at]);
    }
    EXPECT_GT(refused, 300); // signatures, names and lengths; times, checksums and content are not looked at
    for (std::size_t length = whole.size(); length-- > 0;) {
        std::filesystem::resize_file(zip, length);
        EXPECT_EQ(messageOf([&] { Storage::inspectZip(zip); }), "Nieprawidłowa lub niebezpieczna paczka ZIP.")
            << length;
    }
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
    const std::pair<QString, std::string> rows[]
        = {{most, ""}, {most + QStringLiteral("../b"), crowded}, {{}, crowded}, {QStringLiteral("\n\n"), crowded},
            {QStringLiteral("a..b/c...\n.../.x/..y\n.\nd/"), ""}, {QStringLiteral("a\n/b"), unsafe},
            {QStringLiteral("a\\b"), unsafe}, {QStringLiteral(".."), unsafe}, {QStringLiteral("a//..//b"), unsafe},
            {QStringLiteral("a/.."), unsafe}, {QStringLiteral("a\r\nb"), unsafe}, {QString(QChar(u'\0')), unsafe}};
    for (const auto &[listing, message] : rows) {
        EXPECT_EQ(messageOf([&, &text = listing] { Storage::validateZipListing(text); }), message) << listing.left(20);
    }
}

TEST(ZipUnpacking, givesWhatItsOwnerCanReadAndRemove)
{
    for (const Archive &archive : archives()) {
        if (archive.name != "no-permissions.zip" && archive.name != "setuid.zip") {
            continue;
        }
        const TemporaryFolder folder;
        int items = 0;
        for (const auto &item :
            std::filesystem::recursive_directory_iterator(Storage::unpackZip(archive.path, folder.path()))) {
            const unsigned mode = unsigned(item.status().permissions());
            EXPECT_EQ(mode & (item.is_directory() ? 07700 : 07600), item.is_directory() ? 0700U : 0600U) << item.path();
            ++items;
        }
        EXPECT_GE(items, 7);
    }
}
