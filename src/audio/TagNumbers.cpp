#include "audio/TagNumbers.h"

#include "platform/text/Characters.h"

#include <algorithm>

std::optional<std::int64_t> tagNumber(const QString &text)
{
    const auto begin = std::find_if(text.begin(), text.end(), [](QChar c) { return c != u'/'; });
    const auto end = std::find(begin, text.end(), QChar(u'/'));
    const QStringView piece(begin, end);
    const bool sign = piece.startsWith(u'+') || piece.startsWith(u'-');
    const QStringView digits = piece.mid(sign ? 1 : 0);
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (digits.isEmpty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        return std::nullopt;
    }
    bool fits = false;
    const qlonglong number = piece.toLongLong(&fits, 10);
    return fits ? std::optional<std::int64_t>(number) : std::nullopt;
}

QString tagYear(const QString &date)
{
    return firstCharacters(date, 4);
}
