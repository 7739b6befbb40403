#include "platform/text/Characters.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

/// `character` is not empty.
bool isLetterOrNumber(QStringView character)
{
    const QChar first = character.front();
    const char32_t code = first.isHighSurrogate() && character.size() > 1 ? QChar::surrogateToUcs4(first, character[1])
                                                                          : first.unicode();
    if (QChar::isLetterOrNumber(code)) {
        return true;
    }
    // Some signs and marks are alphabetic too, such as a letter in a circle; Qt's own tables do not say.
    static const QRegularExpression alphabetic(QStringLiteral("^\\p{Alphabetic}"));
    return (QChar::isSymbol(code) || QChar::isMark(code)) && alphabetic.match(character.toString()).hasMatch();
}

} // namespace

QString firstCharacters(const QString &text, qsizetype count)
{
    if (text.size() <= count) {
        return text;
    }
    const auto plain = [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7F; };
    // One unit more than is taken: a combining mark behind the cut would belong to the last character.
    if (std::all_of(text.begin(), text.begin() + count + 1, plain)) {
        return text.first(count);
    }
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype taken = 0; taken < count; ++taken) {
        if (boundaries.toNextBoundary() < 0) {
            return text;
        }
    }
    return text.first(boundaries.position());
}

QString lettersAndNumbers(const QString &text)
{
    QString result;
    result.reserve(text.size());
    // Below the first combining mark, each code unit is a character.
    if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x300; })) {
        std::copy_if(
            text.begin(), text.end(), std::back_inserter(result), [](QChar c) { return c.isLetterOrNumber(); });
        return result;
    }
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0, end = 0; (end = boundaries.toNextBoundary()) > start; start = end) {
        const QStringView character = QStringView(text).sliced(start, end - start);
        if (isLetterOrNumber(character)) {
            result.append(character);
        }
    }
    return result;
}
