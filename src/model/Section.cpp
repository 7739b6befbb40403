#include "model/Section.h"

QString sectionTitle(Section section)
{
    switch (section) {
    case Section::Device:
        return QStringLiteral("Twój iPod");
    case Section::Music:
        return QStringLiteral("Muzyka");
    case Section::Playlists:
        return QStringLiteral("Playlisty");
    case Section::Themes:
        return QStringLiteral("Motywy");
    case Section::Backups:
        return QStringLiteral("Kopie zapasowe");
    case Section::Quality:
        return QStringLiteral("Porządek");
    case Section::Guide:
        return QStringLiteral("Poradnik");
    }
    Q_UNREACHABLE();
}

std::optional<Section> sectionFromTitle(const QString &title)
{
    for (const Section section : allSections) {
        if (sectionTitle(section) == title) {
            return section;
        }
    }
    return std::nullopt;
}
