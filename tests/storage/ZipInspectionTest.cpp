#include "storage/ZipInspection.h"
#include "storage/ZipUnpacking.h"

#include "support/Archives.h"
#include "support/Messages.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

const std::string bad = "Nieprawidłowa lub niebezpieczna paczka ZIP.";

} // namespace

TEST(ZipInspection, takesEveryGoodArchiveAndRefusesEachHostileOneWithItsReason)
{
    int good = 0;
    int refused = 0;
    for (const Archive &archive : archives()) {
        EXPECT_EQ(messageOf([&] { Storage::inspectZip(archive.path); }), archive.inspection) << archive.name;
        ++(archive.inspection.empty() ? good : refused);
    }
    EXPECT_GE(good, 25);
    EXPECT_GE(refused, 50);
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
        EXPECT_EQ(messageOf([&] { Storage::inspectZip(zip); }), bad) << length;
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
    QString lines = QStringLiteral("a\n\n").repeated(5000);
    EXPECT_EQ(messageOf([&] { Storage::validateZipListing(lines); }), "");
    lines += QStringLiteral("../b");
    EXPECT_EQ(messageOf([&] { Storage::validateZipListing(lines); }), crowded);
    const std::pair<const char *, std::string> rows[] = {{"", crowded}, {"\n\n", crowded}, {"a\nb/c/", ""},
        {"a..b/c...\n.../.x/..y", ""}, {"a\n/b", unsafe}, {"a\\b", unsafe}, {"..", unsafe}, {"a/..", unsafe},
        {"../a", unsafe}, {"a//..//b", unsafe}, {"a\rb", unsafe}, {"a\r\nb", unsafe}, {".", ""}};
    for (const auto &[listing, message] : rows) {
        EXPECT_EQ(messageOf([&, text = listing] { Storage::validateZipListing(QString::fromUtf8(text)); }), message)
            << listing;
    }
    EXPECT_EQ(messageOf([&] { Storage::validateZipListing(QStringLiteral("a") + QChar(u'\0')); }), unsafe);
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
