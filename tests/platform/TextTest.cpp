// Names as text, and the order and search of texts.
#include "platform/files/Files.h"
#include "platform/text/ByteCount.h"
#include "platform/text/TextOrder.h"

#include "support/Testing.h"

TEST(PathText, bringsEveryNameBack)
{
    const std::string rows[] = {"/muzyka/Żółw/01 – a.flac", "caf\xE9.mp3", "\xFF\x80\xC3", "\xC3\xB3", "\xED\xA0\x80",
        "\xF0\x9F\x87\xB5", "\xF0\x9F\x87", "\xC0\xAF\xF5\x90", "\xE0\x80\xAF", "\xF0\x80\x80\xAF", "\xF4\x90\x80\x80",
        "", "a\xCC\x81", "\xEF\xBB\xBFstart", "\xFF\xEF\xBB\xBF"};
    for (const std::string &bytes : rows) {
        EXPECT_EQ(Files::fromText(Files::text(bytes)).native(), bytes);
    }
    EXPECT_EQ(Files::text("żółw"), u"żółw"_s);
    EXPECT_EQ(Files::text(std::string("a\xE9")), u"a"_s + QChar(0xDCE9));
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
    EXPECT_EQ(TextOrder::compare(u"Ż"_s, u"z\u0307"_s), 0);
    // English takes the Polish letters for accented ones.
    TextOrder::setLanguage(TextOrder::Language::English);
    EXPECT_LT(TextOrder::compare(u"źdźbło"_s, u"zebra"_s), 0);
    TextOrder::setLanguage(TextOrder::Language::Polish);
}

TEST(ByteCount, isShortAndInTheShownLanguage)
{
    EXPECT_EQ(byteCount(999'499).simplified(), u"999 kB"_s); // whichever blank is there
    EXPECT_EQ(byteCount(999'500).simplified(), u"1,0 MB"_s);
    EXPECT_EQ(byteCount(999'949'999).simplified(), u"999,9 MB"_s);
    EXPECT_EQ(byteCount(999'950'000).simplified(), u"1,00 GB"_s);
    EXPECT_EQ(byteCount(999'995'000'000).simplified(), u"1,00 TB"_s);
    EXPECT_EQ(byteCount(12'345'678).simplified(), u"12,3 MB"_s);
    TextOrder::setLanguage(TextOrder::Language::English);
    EXPECT_EQ(byteCount(1'234'567'890).simplified(), u"1.23 GB"_s);
    TextOrder::setLanguage(TextOrder::Language::Polish);
}

TEST(TextSearch, ignoresCaseAndComposition)
{
    EXPECT_TRUE(TextOrder::contains(u"Żółta ŁÓDŹ"_s, u"łódź"_s));
    EXPECT_TRUE(TextOrder::contains(u"z\u0307o\u0301łw"_s, u"ŻÓŁW"_s));
    EXPECT_TRUE(TextOrder::contains(u"ŻÓŁW"_s, u"o\u0301łw"_s));
    EXPECT_FALSE(TextOrder::contains(u"zolw"_s, u"żółw"_s));
    // As Qt's caseless search of composed texts does, letter by letter.
    const QStringList texts {u""_s, u"i"_s, u"I"_s, u"İ"_s, u"ı"_s, u"i\u0307"_s, u"ss"_s, u"STRASSE"_s, u"straße"_s,
        u"STRAẞE"_s, u"ŻÓŁW"_s, u"z\u0307o\u0301łw"_s, u"\u0301łw"_s, u"ΣΑΣ"_s, u"σας"_s, u"ǅ"_s, u"ǆ"_s, u"ﬁ"_s,
        u"FI"_s, u"\U00010400\U0001E900"_s, u"\U00010428\U0001E922"_s};
    for (const QString &text : texts) {
        for (const QString &part : texts) {
            const bool holds = text.normalized(QString::NormalizationForm_C)
                                   .contains(part.normalized(QString::NormalizationForm_C), Qt::CaseInsensitive);
            EXPECT_EQ(TextOrder::contains(text, part), holds) << text.toStdString() << " " << part.toStdString();
        }
    }
}
