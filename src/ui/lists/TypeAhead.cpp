#include "ui/lists/TypeAhead.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::chrono::milliseconds typingPause {1000}; ///< after which typing begins anew

/// Letters with a stroke are no composed ones for Unicode: what they are to the eye is said here.
char32_t withoutStroke(char32_t letter)
{
    switch (letter) {
    case U'ł':
        return U'l';
    case U'đ':
        return U'd';
    case U'ø':
        return U'o';
    case U'ħ':
        return U'h';
    case U'ŧ':
        return U't';
    case U'ƶ':
        return U'z';
    case U'ı':
        return U'i';
    default:
        return letter;
    }
}

bool isMark(QChar unit)
{
    return unit.unicode() >= 0x300 && unit.isMark();
}

char32_t firstCodePoint(const QString &text)
{
    return text.size() > 1 && text[0].isHighSurrogate() ? QChar::surrogateToUcs4(text[0], text[1])
        : text.isEmpty()                                ? 0
                                                        : text[0].unicode();
}

char32_t withoutAccents(const QString &letter)
{
    return withoutStroke(firstCodePoint(letter.normalized(QString::NormalizationForm_D)));
}

/// Latin's letters that come composed, by their code: to take them apart anew in each name would be slow.
const auto &bareLatin()
{
    static const auto table = [] {
        std::array<char16_t, 0x250> result {};
        for (char16_t code = 0; code < result.size(); ++code) {
            result[code] = char16_t(withoutAccents(QString(QChar(code))));
        }
        return result;
    }();
    return table;
}

/// A letter as it is compared: with its accents composed where it has some, and bare.
struct Letter {
    QString whole;
    char32_t bare = 0;
};

/// Takes the first letter with its marks off `rest`.
Letter takeLetter(QStringView &rest)
{
    constexpr qsizetype maxMarks = 8; // more are a prank
    qsizetype end = rest.size() > 1 && rest[0].isHighSurrogate() && rest[1].isLowSurrogate() ? 2 : 1;
    while (end < std::min(rest.size(), maxMarks) && isMark(rest[end])) {
        ++end;
    }
    const QStringView taken = rest.first(end);
    rest = rest.sliced(end);
    if (const QChar folded = taken[0].toCaseFolded(); end == 1 && folded.unicode() < bareLatin().size()) {
        return {.whole = folded, .bare = bareLatin()[folded.unicode()]};
    }
    const QString whole = taken.toString().toCaseFolded().normalized(QString::NormalizationForm_C);
    return {.whole = whole, .bare = withoutAccents(whole)};
}

std::vector<Letter> lettersOf(QStringView text)
{
    std::vector<Letter> letters;
    while (!text.isEmpty()) {
        letters.push_back(takeLetter(text));
    }
    return letters;
}

bool isBare(const Letter &letter)
{
    return firstCodePoint(letter.whole) == letter.bare;
}

bool beginsWith(const QString &name, const std::vector<Letter> &typed)
{
    QStringView rest(name);
    return std::all_of(typed.begin(), typed.end(), [&rest](const Letter &wanted) {
        if (rest.isEmpty()) {
            return false;
        }
        if (const QChar next = rest[0];
            next.unicode() < 0x80 && (rest.size() == 1 || rest[1].unicode() < 0x300)) { // nearly all are of this kind
            rest = rest.sliced(1);
            return next.toLower().unicode() == wanted.bare && isBare(wanted);
        }
        const Letter letter = takeLetter(rest);
        return letter.whole == wanted.whole || (isBare(wanted) && letter.bare == wanted.bare);
    });
}

/// No control character, and no blank to begin with.
bool isLetter(const QString &text)
{
    return !text.isEmpty() && !text[0].isSpace()
        && std::none_of(text.begin(), text.end(), [](QChar unit) { return unit.category() == QChar::Other_Control; });
}

} // namespace

bool TypeAhead::begins(const QString &name, const QString &typed)
{
    return beginsWith(name, lettersOf(typed));
}

bool TypeAhead::isUnderWay() const
{
    return !m_typed.isEmpty() && m_clock() - m_last < typingPause;
}

bool TypeAhead::takes(const QString &text, int modifiers) const
{
    const auto shortcut = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return (Qt::KeyboardModifiers(modifiers) & shortcut) == 0
        && (isLetter(text) || (text == QStringLiteral(" ") && isUnderWay()));
}

int TypeAhead::type(const QString &text, int current, int rowCount, const NameOf &nameOf)
{
    const QString before = m_typed;
    const bool isAgain = text == before && m_found >= 0 && m_found == current;
    if (!isAgain) { // the same letter stays a single one
        m_typed = isUnderWay() ? m_typed + text : text;
    }
    m_last = m_clock();
    m_found = -1;
    const std::vector<Letter> letters = lettersOf(m_typed);
    const int start = std::clamp(current, 0, std::max(0, rowCount - 1)) + (isAgain ? 1 : 0);
    for (int step = 0; step < rowCount && m_found < 0; ++step) {
        const int row = (start + step) % rowCount;
        if (beginsWith(nameOf(row), letters)) {
            m_found = row;
        }
    }
    return m_found;
}
