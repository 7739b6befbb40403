// Wording, row changes and file addresses: values in, values out.
#include "support/Messages.h"
#include "ui/LocalPath.h"
#include "ui/RowChanges.h"
#include "ui/Wording.h"

#include <gtest/gtest.h>

#include <random>

using namespace std::chrono_literals;

TEST(Wording, sizesAreDecimalAndPolish)
{
    const std::vector<std::pair<std::int64_t, const char *>> table {{0, "0 B"}, {999, "999 B"}, {1'000, "1 kB"},
        {999'499, "999 kB"}, {1'000'000, "1,0 MB"}, {12'345'678, "12,3 MB"}, {1'234'567'890, "1,23 GB"},
        {159'900'000'000, "159,90 GB"}, {2'000'000'000'000, "2,00 TB"}};
    for (const auto &[count, text] : table) {
        // The blank between number and unit is one that does not break.
        EXPECT_EQ(Wording::bytes(count).replace(QChar(u'\u00A0'), QLatin1Char(' ')), QString::fromUtf8(text)) << count;
    }
}

TEST(Wording, remainingTimeIsToldOnceThePaceIsKnown)
{
    // Too early, too little done, nothing done, all done.
    for (const auto &[elapsed, done] :
        {std::pair(3s, 0.5), std::pair(60s, 0.01), std::pair(60s, 0.0), std::pair(60s, 1.0)}) {
        EXPECT_FALSE(Wording::remaining(elapsed, done)) << done;
    }
    EXPECT_EQ(Wording::remaining(30s, 0.25), std::optional(90s));
    const std::vector<std::pair<std::chrono::seconds, const char *>> table {{0s, "jeszcze około 10 s"},
        {37s, "jeszcze około 40 s"}, {59s, "jeszcze około 60 s"}, {60s, "jeszcze około 1 min"},
        {100s, "jeszcze około 2 min"}, {59min, "jeszcze około 59 min"}, {100min, "jeszcze około 2 godz."}};
    for (const auto &[seconds, text] : table) {
        EXPECT_EQ(Wording::remainingText(seconds), QString::fromUtf8(text)) << seconds.count();
    }
}

TEST(LocalPath, keepsTheBytesOfEveryName)
{
    using Path = std::optional<std::filesystem::path>;
    const std::vector<std::pair<const char *, Path>> table {{"file:///music/a%20b.flac", "/music/a b.flac"},
        {"file:///music/%C5%BB%C3%B3%C5%82w", "/music/Żółw"},
        {"file:///old/%A3aka%FF.mp3",
            "/old/\xA3"
            "aka\xFF.mp3"},
        {"file:///a%23b%3Fc%25d", "/a#b?c%d"}, {"https://example.org/a.flac", {}}, {"file:///a%00b", {}}, {"", {}}};
    for (const auto &[address, path] : table) {
        EXPECT_EQ(localPath(QUrl::fromEncoded(address)), path) << address;
    }
}

TEST(RowChanges, neighboursGoInOneStep)
{
    const auto plan = [](const char *before, const char *after, std::size_t mostSteps = 8) {
        const auto list = [](const char *letters) {
            const QStringList texts = QString::fromLatin1(letters).split(QString(), Qt::SkipEmptyParts);
            return std::vector<QString>(texts.begin(), texts.end());
        };
        return RowChanges::plan(list(before), list(after), mostSteps);
    };
    using enum RowChanges::Step::Kind;
    using Steps = std::optional<std::vector<RowChanges::Step>>;
    EXPECT_EQ(plan("abc", "abc"), Steps(std::in_place));
    EXPECT_EQ(plan("abcde", "bxy"), (Steps {{{Remove, 2, 3}, {Remove, 0, 1}, {Insert, 1, 2}}}));
    EXPECT_EQ(plan("abc", "cb"), Steps()) << "rows that stay changed places";
    EXPECT_EQ(plan("aa", "a"), Steps()) << "no identities";
    EXPECT_EQ(plan("abcd", "bd", 1), Steps()) << "too many steps";
}

TEST(RowChanges, everyPlanLeadsToTheWantedRows)
{
    std::mt19937 random(7); // the same lists in each run
    for (int round = 0; round < 500; ++round) {
        std::vector<QString> rows;
        std::vector<QString> wanted;
        for (char16_t letter = u'a'; letter < u'u'; ++letter) {
            const unsigned place = unsigned(random()) % 4;
            if (place & 1) {
                rows.emplace_back(QChar(letter));
            }
            if (place & 2) {
                wanted.emplace_back(QChar(letter));
            }
        }
        const auto steps = RowChanges::plan(rows, wanted, 100);
        ASSERT_TRUE(steps);
        for (const auto &[kind, first, count] : *steps) {
            if (kind == RowChanges::Step::Kind::Remove) {
                rows.erase(rows.begin() + first, rows.begin() + first + count);
            } else {
                rows.insert(rows.begin() + first, wanted.begin() + first, wanted.begin() + first + count);
            }
        }
        EXPECT_EQ(rows, wanted);
    }
}
