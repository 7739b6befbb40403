// Names as text, characters, and the order and search of texts.
#include "platform/Characters.h"
#include "platform/Files.h"
#include "platform/TextOrder.h"

#include "support/Messages.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

TEST(PathText, bringsEveryNameBack)
{
    const std::string rows[] = {"/muzyka/Żółw/01 – a.flac", "caf\xE9.mp3", "\xFF\x80\xC3", "\xC3\xB3", "\xED\xA0\x80",
        "\xF0\x9F\x87\xB5", "\xF0\x9F\x87", "\xC0\xAF\xF5\x90", "", "a\xCC\x81"};
    for (const std::string &bytes : rows) {
        EXPECT_EQ(Files::fromText(Files::text(bytes)).native(), bytes);
    }
    EXPECT_EQ(Files::text("żółw"), QStringLiteral("żółw"));
    EXPECT_EQ(Files::text(std::string("a\xE9")), QStringLiteral("a") + QChar(0xDCE9));
}

TEST(PathText, takesNamesApart)
{
    EXPECT_EQ(Files::name("/a/b/"), QStringLiteral("b"));
    EXPECT_EQ(Files::name("/"), QStringLiteral("/"));
    EXPECT_EQ(Files::baseName("/a/b.tar.gz"), QStringLiteral("b.tar"));
    EXPECT_EQ(Files::extension("/a/b.tar.gz"), QStringLiteral("gz"));
    EXPECT_EQ(Files::extension("/a.b/c") + Files::extension("/a/.hidden"), QString());
    EXPECT_EQ(Files::standardised("/a/./b//c/../d/").native(), "/a/b/d");
    EXPECT_EQ(Files::standardised("/../a").native(), "/a");
}

TEST(ReadBelow, refusesWhatIsTooLargeOrNoFile)
{
    const TemporaryFolder folder;
    folder.write("file", "12345");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(Files::readBelow(folder / "file", 6), QByteArray("12345"));
    EXPECT_FALSE(Files::readBelow(folder / "file", 5));
    EXPECT_FALSE(Files::readBelow(folder / "missing", 5));
    EXPECT_FALSE(Files::readBelow(folder.path(), 100'000));
    EXPECT_FALSE(Files::readBelow(folder / "pipe", 100'000)); // and does not wait for a writer
}

TEST(Characters, countAsAReaderCounts)
{
    const QString family = QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467");
    const std::pair<QString, QString> rows[] = {
        {QStringLiteral("99"), QStringLiteral("99")},
        {QStringLiteral("200e\u0301x"), QStringLiteral("200e\u0301")},
        {family + family + family + family + QStringLiteral("x"), family + family + family + family},
        {QStringLiteral("ab\r\ncd"), QStringLiteral("ab\r\nc")},
    };
    for (const auto &[text, first] : rows) {
        EXPECT_EQ(firstCharacters(text, 4), first) << text;
    }
}

TEST(TextOrder, isThatOfAFileManager)
{
    // Each row in ascending order.
    const std::vector<const char *> rows[] = {{"2.flac", "10.flac"}, {"Utwór 9", "utwór 10", "UTWÓR 11"},
        {"lato", "łąka", "marzec"}, {"zebra", "źdźbło", "żar"}, {"Ala", "ąz", "Bo"}};
    TextOrder::setLanguage(TextOrder::Language::Polish);
    for (const std::vector<const char *> &row : rows) {
        for (std::size_t i = 1; i < row.size(); ++i) {
            const QString before = QString::fromUtf8(row[i - 1]);
            const QString after = QString::fromUtf8(row[i]);
            EXPECT_LT(TextOrder::compare(before, after), 0) << row[i];
            EXPECT_LT(TextOrder::key(before).compare(TextOrder::key(after)), 0) << row[i];
        }
    }
    EXPECT_EQ(TextOrder::compare(QStringLiteral("Ż"), QStringLiteral("z\u0307")), 0);
    // English takes the Polish letters for accented ones.
    TextOrder::setLanguage(TextOrder::Language::English);
    EXPECT_GT(TextOrder::compare(QStringLiteral("źdźbło"), QStringLiteral("zdania")), 0);
    EXPECT_LT(TextOrder::compare(QStringLiteral("źdźbło"), QStringLiteral("zebra")), 0);
    TextOrder::setLanguage(TextOrder::Language::Polish);
}

TEST(TextOrder, sortsStably)
{
    const QStringList texts = QStringLiteral("b A B a 10 9").split(u' ');
    std::vector<QString> items(texts.begin(), texts.end());
    TextOrder::stableSort(items, [](const QString &item) { return item; });
    EXPECT_EQ(QStringList(items.begin(), items.end()).join(u' '), QStringLiteral("9 10 A a b B"));
}

TEST(TextSearch, ignoresCaseAndComposition)
{
    EXPECT_TRUE(TextOrder::contains(QStringLiteral("Żółta ŁÓDŹ"), QStringLiteral("łódź")));
    EXPECT_TRUE(TextOrder::contains(QStringLiteral("z\u0307o\u0301łw"), QStringLiteral("ŻÓŁW")));
    EXPECT_TRUE(TextOrder::contains(QStringLiteral("ŻÓŁW"), QStringLiteral("o\u0301łw")));
    EXPECT_FALSE(TextOrder::contains(QStringLiteral("zolw"), QStringLiteral("żółw")));
}
