// Wording, row changes and file addresses: values in, values out.
#include "support/Testing.h"
#include "ui/LocalPath.h"
#include "ui/lists/RowChanges.h"
#include "ui/words/Wording.h"

#include <random>

using namespace std::chrono_literals;

TEST(Wording, tellsTheTimeThatRemains)
{
    EXPECT_EQ(Wording::remainingText(37s), u"jeszcze około 40 s"_s);
    EXPECT_EQ(Wording::remainingText(100s), u"jeszcze około 2 min"_s);
}

TEST(LocalPath, keepsTheBytesOfEveryName)
{
    using Path = std::optional<fs::path>;
    const std::pair<const char *, Path> table[]
        = {{"file:///%C5%BB%C3%B3%C5%82w%20b", "/Żółw b"}, {"file:///old/%A3%FF.mp3", "/old/\xA3\xFF.mp3"},
            {"file:///a%23b%3Fc%25d", "/a#b?c%d"}, {"https://example.org/a.flac", {}}, {"file:///a%00b", {}}, {"", {}},
            {"file://localhost/a", "/a"}, {"file://elsewhere/a", {}}, {"file:a.zip", {}}};
    for (const auto &[address, path] : table) {
        EXPECT_EQ(localPath(QUrl::fromEncoded(address)), path) << address;
    }
}

TEST(RowChanges, everyPlanLeadsToTheWantedRows)
{
    EXPECT_FALSE(RowChanges::plan<QString>({u"a"_s, u"a"_s}, {}, 100)) << "no identities";
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
        EXPECT_FALSE(steps->size() > 1 && RowChanges::plan(rows, wanted, steps->size() - 1)) << "too many steps";
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
