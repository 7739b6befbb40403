#include "ui/words/Wording.h"

#include "ui/words/Localization.h"

namespace {

/// Controls, ends of lines, half of a character, and the marks that order what follows from right to left or nest it.
bool isUnfit(QChar unit)
{
    const char16_t code = unit.unicode();
    const bool turns = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return turns || unit.category() == QChar::Other_Control || unit.isSurrogate()
        || unit.category() == QChar::Separator_Line || unit.category() == QChar::Separator_Paragraph;
}

} // namespace

namespace Wording {

QString remainingText(std::chrono::seconds remaining)
{
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t step = 10;
    const std::int64_t seconds = remaining.count();
    if (seconds >= 60 * minute) {
        return AppLocalizer::text(
            QStringLiteral("jeszcze około %1 godz.").arg((seconds + 30 * minute) / (60 * minute)));
    }
    if (seconds >= minute) {
        return AppLocalizer::text(QStringLiteral("jeszcze około %1 min").arg((seconds + minute / 2) / minute));
    }
    return AppLocalizer::text(QStringLiteral("jeszcze około %1 s").arg((seconds / step + 1) * step));
}

QString moment(const QDateTime &moment)
{
    const QLocale locale = AppLocalizer::locale();
    return locale.toString(moment.date(), QLocale::LongFormat) + QStringLiteral(", ")
        + locale.toString(moment.time(), QLocale::ShortFormat);
}

QString fileName(const QString &name)
{
    QString shown;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar unit = name[i];
        if (unit.isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
            shown += name.sliced(i++, 2);
        } else if (isUnfit(unit)) {
            shown += QChar(QChar::ReplacementCharacter);
        } else {
            shown += unit;
        }
    }
    return shown;
}

QString shownName(const QString &name)
{
    constexpr qsizetype longest = 400;
    return name.size() > longest ? fileName(name.left(longest)) + QChar(0x2026) : fileName(name);
}

QString artistText(const QString &artist)
{
    return artist == QStringLiteral("Różni wykonawcy") ? AppLocalizer::text(artist) : artist;
}

} // namespace Wording
