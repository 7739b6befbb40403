#include "ui/words/Localization.h"

#include "platform/text/TextOrder.h"

namespace AppLocalizer {

QString language()
{
    return QStringLiteral("pl");
}

QString text(const QString &polish)
{
    return polish;
}

QLocale locale()
{
    return QLocale(QLocale::Polish, QLocale::Poland);
}

void applyToTextOrder()
{
    TextOrder::setLanguage(TextOrder::Language::Polish);
}

} // namespace AppLocalizer
