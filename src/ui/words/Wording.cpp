#include "ui/words/Wording.h"

#include "ui/words/Localization.h"

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

QString artistText(const QString &artist)
{
    return artist == QStringLiteral("Różni wykonawcy") ? AppLocalizer::text(artist) : artist;
}

} // namespace Wording
