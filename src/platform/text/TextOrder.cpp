#include "platform/text/TextOrder.h"

#include <atomic>

namespace {

std::atomic<TextOrder::Language> currentLanguage = TextOrder::Language::Polish;

QLocale localeOf(TextOrder::Language language)
{
    return language == TextOrder::Language::Polish ? QLocale(QLocale::Polish, QLocale::Poland)
                                                   : QLocale(QLocale::English, QLocale::UnitedStates);
}

/// A collator is not shared between threads, so each thread keeps one for the language it last saw.
const QCollator &collator()
{
    struct Local {
        TextOrder::Language language;
        QCollator collator;
    };
    const auto make = [](TextOrder::Language language) {
        // An explicit locale: the C locale's collation does not compare digits by value.
        QCollator result(localeOf(language));
        result.setNumericMode(true);
        result.setCaseSensitivity(Qt::CaseInsensitive);
        return Local {language, std::move(result)};
    };
    static thread_local Local local = make(currentLanguage);
    if (local.language != currentLanguage) {
        local = make(currentLanguage);
    }
    return local.collator;
}

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

QString composed(const QString &text)
{
    return isAscii(text) ? text : text.normalized(QString::NormalizationForm_C);
}

} // namespace

namespace TextOrder {

void setLanguage(Language language)
{
    currentLanguage = language;
}

Language language()
{
    return currentLanguage;
}

QLocale locale()
{
    return localeOf(currentLanguage);
}

int compare(const QString &a, const QString &b)
{
    return collator().compare(a, b);
}

QCollatorSortKey key(const QString &text)
{
    return collator().sortKey(text);
}

bool contains(const QString &text, const QString &part)
{
    return folded(text).contains(folded(part));
}

QString folded(const QString &text)
{
    // Code point by code point, as Qt's caseless search does; toCaseFolded() would make "ss" of "ß".
    QString result = composed(text);
    QChar *letters = result.data();
    for (qsizetype i = 0; i < result.size(); ++i) {
        if (letters[i].isHighSurrogate() && i + 1 < result.size() && letters[i + 1].isLowSurrogate()) {
            const char32_t folded = QChar::toCaseFolded(QChar::surrogateToUcs4(letters[i], letters[i + 1]));
            letters[i] = QChar::highSurrogate(folded);
            letters[++i] = QChar::lowSurrogate(folded);
        } else {
            letters[i] = letters[i].toCaseFolded();
        }
    }
    return result;
}

} // namespace TextOrder
