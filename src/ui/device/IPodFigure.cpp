#include "ui/device/IPodFigure.h"

#include "ui/device/IPodPainter.h"
#include "ui/words/Localization.h"

const IPodProfile &IPodFigure::profile() const
{
    const IPodProfile *known = IPodProfile::withId(m_profileId);
    return known ? *known : IPodProfile::fallback();
}

QString IPodFigure::finish() const
{
    return m_finish.isEmpty() ? profile().finish : m_finish;
}

QString IPodFigure::label() const
{
    return AppLocalizer::text(profile().name) + QStringLiteral(" · ") + finish();
}

IPodLayout IPodFigure::layout() const
{
    return IPodLayout::of(profile(), m_width, m_maxHeight, m_pixelRatio);
}

QColor IPodFigure::ink() const
{
    return IPodPainter::screenInk(profile());
}

int IPodFigure::margin() const
{
    return IPodPainter::margin;
}

QString IPodFigure::address(const char *kind) const
{
    if (body().isEmpty()) {
        return {};
    }
    // A finish comes out of the settings and can be any text: what is none of the known ones looks like white.
    const QString colour = IPodFinish::names().contains(finish()) ? finish() : QStringLiteral("white");
    return QStringLiteral("image://ipod/%1/%2/%3/%4/%5/%6")
        .arg(profile().id, colour)
        .arg(m_width)
        .arg(m_maxHeight)
        .arg(m_pixelRatio)
        .arg(QLatin1String(kind));
}
