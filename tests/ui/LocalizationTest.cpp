// The text operation by its rules, and the program's own table against the texts that the sources hold.
#include "support/Testing.h"

#include "SourceTexts.h"
#include "ui/words/Localization.h"

#include <QElapsedTimer>

#include <random>

namespace {

TranslationTable small()
{
    return TranslationTable(QMap<QString, QString> {{u"Muzyka"_s, u"Music"_s}, {u"Folder testowy"_s, u"Test folder"_s},
        {u"tytuł"_s, u"title"_s}, {u"Kopia"_s, u"Backup"_s}, {u"Nie ma {0}"_s, u"{0} is missing"_s},
        {u"Nie ma {0} w {1}"_s, u"{1} lacks {0}"_s}, {u"{0}{1} w {2}"_s, u"in {2}"_s},
        {u"Ma {0}"_s, u"{0}, {7} and {00}"_s}, {u"Dwa {0} i {0}"_s, u"{0}"_s},
        {u"{0}\n\nKopia: {1}"_s, u"{0}\n\nBackup: {1}"_s}, {u"{0}\n\nStop"_s, u"Stop. {0}"_s},
        {u"Nie odczytano tagów: {0}. Uwaga."_s, u"Tags not found: {0}. Beware."_s},
        {u"Odsłuch na Macu · "_s, u"Playing · "_s}, {u"Za {99999999999999999999}"_s, u"At {99999999999999999999}"_s},
        {u"a.*(b) {0}?"_s, u"{0}"_s}});
}

/// "key {0}", of which a text can have parts in common with, for either matcher.
QString anyText(std::mt19937 &random, int most, bool withPlaces)
{
    QString text;
    for (int i = int(random() % unsigned(most + 1)); i > 0; --i) {
        const unsigned letter = unsigned(random()) % (withPlaces ? 5 : 4);
        text += letter == 4 ? u"{0}"_s : QString(u"ab.\n"[letter]);
    }
    return text;
}

/// As the rules have it: an expression of the key, matched by the library.
std::optional<QStringList> matchedByExpression(const TemplateText &key, const QString &text)
{
    QStringList fixed;
    for (const QString &piece : key.fixed) {
        fixed.append(QRegularExpression::escape(piece));
    }
    const QRegularExpression expression(u'^' + fixed.join(u"([\\s\\S]*?)"_s) + u'$');
    const QRegularExpressionMatch match = expression.match(text);
    return match.hasMatch() ? std::optional(match.capturedTexts().mid(1)) : std::nullopt;
}

struct Sources {
    QSet<QString> all;
    QSet<QString> shown;
    QStringList
        overlooked; ///< what a plain look for Polish letters in quotes finds, and the reader of sources does not

    Sources()
    {
        for (const auto &entry : fs::recursive_directory_iterator(fs::path(MARLUNE_SOURCE_DIR) / "src")) {
            if (const fs::path extension = entry.path().extension();
                extension == ".cpp" || extension == ".h" || extension == ".qml") {
                const SourceTexts texts(entry.path());
                for (const QString &text : texts.all) {
                    const QStringList lines = text.split(u'\n');
                    all += QSet(lines.begin(), lines.end()) + QSet {text};
                }
                shown += QSet(texts.shown.begin(), texts.shown.end());
                overlooked += polishIn(entry.path());
            }
        }
        const QString found = QStringList(all.begin(), all.end()).join(u'\0');
        overlooked.removeIf([&](const QString &text) { return found.contains(text); });
    }

    /// What a plain look for Polish letters in quotes finds.
    static QStringList polishIn(const fs::path &file)
    {
        static const QRegularExpression notText(u"(^|\\s)//.*|R\"\\(.*"_s);
        static const QRegularExpression quoted(u"\"([^\"]*)\""_s);
        static const QRegularExpression place(u"%[0-9]|\\\\n"_s);
        QStringList result;
        for (QString line : QString::fromStdString(fileBytes(file)).split(u'\n')) {
            for (const auto &literal : quoted.globalMatch(line.remove(notText))) {
                result += literal.captured(1).split(place).filter(QRegularExpression(u"[ąćęłńóśźż]"_s));
            }
        }
        return result;
    }
};

/// What reads like a text for people and is none: a file's, a protocol's or a format's, or the same in all languages.
bool isForNobody(const QString &text)
{
    static const QSet<QString> names {u"Inter"_s, u"Basic"_s, u"Polski"_s, u"English"_s, u"Metadata"_s, u"Volume"_s,
        u"Target"_s, u"Drive"_s, u"Unmount"_s, u"Eject"_s, u"disk full"_s, u"{0} B"_s, u"CD {0}"_s, u"Bez nazwy"_s,
        u"nr {0}"_s, u"{0} MB"_s, u"Memory"_s, u"Manufacturer"_s, u"ß"_s, u"yyyy-MM-dd HH:mm:ss"_s,
        u"Tags not found: "_s,
        u"Kopia ustawień i motywów Rockbox — Marlune\n{0} +0000\nUrządzenie: {1}\nNie zawiera muzyki ani firmware.\n"_s};
    return names.contains(text) || text.startsWith(u'<') || text.startsWith(u"*.");
}

/// Whether the table knows the text as a whole, or line by line as the text operation takes it.
bool isCovered(const TranslationTable &table, const QString &text)
{
    static const QRegularExpression places(u"\\{[0-9]+\\}"_s);
    if (table.english().contains(text) || table.uppercase().contains(text)
        || !QString(text).remove(places).contains(QRegularExpression(u"\\pL"_s))) {
        return true;
    }
    const QStringList lines = text.split(u'\n');
    return lines.size() > 1 && std::all_of(lines.begin(), lines.end(), [&](QString line) {
        for (int number = 0; number < 9; ++number) { // a line has its own numbers
            if (line.contains(places) && !line.contains(u"{0}"_s)) {
                line.replace(u'{' + QString::number(number + 1) + u'}', u'{' + QString::number(number) + u'}');
            }
        }
        return isCovered(table, line);
    });
}

/// Whether the sources hold the key, or put it together of two texts that they hold.
bool isUsed(const Sources &sources, const std::vector<TemplateText> &templates, const QString &key)
{
    static const QRegularExpression valueOnly(u"^(\\{[0-9]+\\}|[0-9]+)$"_s);
    if (sources.all.contains(key)) {
        return true;
    }
    return std::any_of(templates.begin(), templates.end(), [&](const TemplateText &text) {
        const auto values = text.match(key);
        return values && std::all_of(values->begin(), values->end(), [&](QStringView value) {
            return valueOnly.match(value.toString()).hasMatch() || sources.all.contains(value.toString());
        });
    });
}

QSet<qint64> numbersOf(const QString &text)
{
    QSet<qint64> numbers;
    for (const TemplateText::Place &place : TemplateText::of(text).places) {
        numbers.insert(place.number);
    }
    return numbers;
}

} // namespace

TEST(Localization, theLanguageIsTheChoiceOrTheUsersFirst)
{
    const std::tuple<QString, QStringList, QString> table[]
        = {{u"pl"_s, {u"en-GB"_s}, u"pl"_s}, {u"en"_s, {u"pl-PL"_s}, u"en"_s},
            {u"system"_s, {u"pl-PL"_s, u"en"_s}, u"pl"_s}, {u"system"_s, {u"en"_s, u"pl"_s}, u"en"_s},
            {u"system"_s, {}, u"en"_s}, {u"de"_s, {u"pl"_s}, u"pl"_s}, {u"de"_s, {u"de"_s}, u"en"_s}};
    for (const auto &[choice, preferred, language] : table) {
        EXPECT_EQ(AppLocalizer::languageFor(choice, preferred), language);
    }
}

TEST(Localization, translatesByTheFirstRuleThatApplies)
{
    const std::pair<QString, QString> table[] = {{u"Muzyka"_s, u"Music"_s}, {u"FOLDER TESTOWY"_s, u"TEST FOLDER"_s},
        {u"Nieznane"_s, u"Nieznane"_s}, {u""_s, u""_s}, {u"Nie ma Muzyka w X"_s, u"X lacks Muzyka"_s},
        {u"Nie ma Muzyka"_s, u"Muzyka is missing"_s}, {u"Nie ma a\nb"_s, u"a\nb is missing"_s}, {u"x w y"_s, u"in y"_s},
        {u"Ma trzy"_s, u"trzy, {7} and trzy"_s}, {u"Dwa psy i koty"_s, u"koty"_s},
        {u"Muzyka\n\nKopia: tytuł"_s, u"Music\n\nBackup: tytuł"_s}, {u"Muzyka\n\nStop"_s, u"Stop. Muzyka"_s},
        {u"Nie odczytano tagów: tytuł, rok. Uwaga."_s, u"Tags not found: title, rok. Beware."_s},
        {u"Muzyka\n\nNieznane"_s, u"Music\n\nNieznane"_s}, {u"Odsłuch na Macu · Muzyka"_s, u"Playing · Muzyka"_s},
        {u"Nie odczytano tagów: tytuł"_s, u"Nie odczytano tagów: tytuł"_s},
        {u"Za {99999999999999999999}"_s, u"At {99999999999999999999}"_s}, {u"Za 5"_s, u"Za 5"_s},
        {u"a.*(b) c?"_s, u"c"_s}, {u"aa(b) c?"_s, u"aa(b) c?"_s}};
    const TranslationTable english = small();
    for (const auto &[polish, expected] : table) {
        EXPECT_EQ(english.translateEnglish(polish), expected) << polish.toStdString();
    }
    EXPECT_EQ(english.translateEnglish(u"Nie ma X"_s, 3), u"X is missing"_s);
    EXPECT_EQ(english.translateEnglish(u"Nie ma X"_s, 4), u"Nie ma X"_s);
    EXPECT_EQ(english.translateEnglish(u"MUZYKA"_s, 4), u"MUSIC"_s);
}

TEST(Localization, matchesAsALazyExpressionWould)
{
    std::mt19937 random(5); // the same texts in each run
    int matched = 0;
    for (int round = 0; round < 20'000; ++round) {
        const TemplateText key = TemplateText::of(anyText(random, 6, true));
        const QString text = anyText(random, 9, false);
        if (!key.places.empty()) {
            std::optional<QStringList> values;
            if (const auto captured = key.match(text)) {
                values.emplace();
                for (const QStringView value : *captured) {
                    values->append(value.toString());
                }
            }
            ASSERT_EQ(values, matchedByExpression(key, text)) << text.toStdString();
            matched += values ? 1 : 0;
        }
    }
    EXPECT_GT(matched, 1000);
}

TEST(Localization, takesAnyTableAndAnyText)
{
    for (const char *json : {"", "[]", "{", R"({"a": 1})", R"({"a": {"b": "c"}})", R"(["a"])", "\xff"}) {
        EXPECT_TRUE(TranslationTable::fromJson(json).english().isEmpty()) << json;
    }
    EXPECT_EQ(TranslationTable::fromJson(R"({"a {0}": "{1}"})").translateEnglish(u"a b"_s), u"{1}"_s);
    const TranslationTable &english = AppLocalizer::table();
    const QString again
        = u"\n\nCzęść utworów mogła już zostać wgrana. Możesz ponowić transfer — identyczne pliki zostaną "
          "pominięte."_s;
    const QString deep = u"Muzyka"_s + again.repeated(100);
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(english.translateEnglish(deep).count(u"Some tracks"_s), 4);
    EXPECT_EQ(english.translateEnglish(QString(1'000'000, u'ż')), QString(1'000'000, u'ż'));
    EXPECT_EQ(english.translateEnglish(u"Nie ma nic\n"_s.repeated(100'000)).size(), 1'100'000);
    EXPECT_LT(time.elapsed(), 2'000) << "of some milliseconds, with room for a debugger's or a sanitizer's";
}

TEST(Localization, theTableHoldsWhatTheSourcesSayAndNothingElse)
{
    const TranslationTable &english = AppLocalizer::table();
    ASSERT_GT(english.english().size(), 300);
    const Sources sources;
    ASSERT_GT(sources.shown.size(), 250);
    EXPECT_EQ(sources.overlooked.join(u"; "_s).toStdString(), std::string());
    std::vector<TemplateText> templates;
    for (const QString &text : sources.all) {
        if (TemplateText made = TemplateText::of(text); !made.places.empty()) {
            templates.push_back(std::move(made));
        }
        if (sources.shown.contains(text) && !isForNobody(text)) {
            EXPECT_TRUE(isCovered(english, text)) << "no English for: " << text.toStdString();
        }
    }
    for (auto entry = english.english().begin(); entry != english.english().end(); ++entry) {
        const std::string key = entry.key().toStdString();
        EXPECT_TRUE(isUsed(sources, templates, entry.key())) << "not in the sources: " << key;
        EXPECT_EQ(numbersOf(entry.key()), numbersOf(entry.value())) << key;
        EXPECT_FALSE(entry->contains(QRegularExpression(u"[ąćęłńóśźżĄĆĘŁŃÓŚŹŻ]|\\bMac\\b|Finder"_s))) << key;
    }
}

TEST(Localization, eachTextGetsItsOwnTranslation)
{
    const TranslationTable &english = AppLocalizer::table();
    EXPECT_GT(english.patterns().back().literalLength, 3) << "so little would be in texts that are none of ours";
    const auto filled = [](const QString &text) {
        return TemplateText::of(text).filled({{0, u"77"_s}, {1, u"12"_s}, {2, u"40"_s}, {3, u"x"_s}});
    };
    for (auto entry = english.english().begin(); entry != english.english().end(); ++entry) {
        EXPECT_EQ(english.translateEnglish(filled(entry.key())), filled(*entry)) << entry.key().toStdString();
    }
}
