#include "model/BrowsingWords.h"

QString viewModeText(ViewMode mode)
{
    switch (mode) {
    case ViewMode::Albums:
        return QStringLiteral("Albumy");
    case ViewMode::Tracks:
        return QStringLiteral("Utwory");
    case ViewMode::Folders:
        return QStringLiteral("Foldery");
    }
    Q_UNREACHABLE();
}

ViewMode viewModeFromText(const QString &text)
{
    for (const ViewMode mode : allViewModes) {
        if (viewModeText(mode) == text) {
            return mode;
        }
    }
    return ViewMode::Albums;
}

QString sortModeText(SortMode mode)
{
    switch (mode) {
    case SortMode::Artist:
        return QStringLiteral("Wykonawca");
    case SortMode::Album:
        return QStringLiteral("Album");
    case SortMode::Year:
        return QStringLiteral("Rok");
    case SortMode::Size:
        return QStringLiteral("Rozmiar");
    }
    Q_UNREACHABLE();
}

SortMode sortModeFromText(const QString &text)
{
    for (const SortMode mode : allSortModes) {
        if (sortModeText(mode) == text) {
            return mode;
        }
    }
    return SortMode::Artist;
}

QString formatFilterText(FormatFilter filter)
{
    switch (filter) {
    case FormatFilter::Everything:
        return QStringLiteral("Wszystko");
    case FormatFilter::Flac:
        return QStringLiteral("FLAC");
    case FormatFilter::Mp3:
        return QStringLiteral("MP3");
    case FormatFilter::Aac:
        return QStringLiteral("AAC");
    case FormatFilter::Alac:
        return QStringLiteral("ALAC");
    case FormatFilter::Others:
        return QStringLiteral("Pozostałe");
    }
    Q_UNREACHABLE();
}

bool passesFormatFilter(const QString &codec, const QString &filter)
{
    if (filter == formatFilterText(FormatFilter::Everything)) {
        return true;
    }
    if (filter == formatFilterText(FormatFilter::Others)) {
        return codec != formatFilterText(FormatFilter::Mp3) && codec != formatFilterText(FormatFilter::Flac);
    }
    return codec == filter;
}
