// The derived lists behind the library page, and what is selected in them.
#include "model/Model.h"

#include "library/AlbumGrouping.h"

#include "platform/TextOrder.h"

#include <algorithm>
#include <numeric>

namespace {

const QString everyFormat = QStringLiteral("Wszystko");
const QString otherFormats = QStringLiteral("Pozostałe");

bool formatMatches(const QString &codec, const QString &filter)
{
    if (filter == everyFormat) {
        return true;
    }
    if (filter == otherFormats) {
        return codec != QLatin1String("MP3") && codec != QLatin1String("FLAC");
    }
    return codec == filter;
}

enum class Order : std::uint8_t { Artist, Album, Year, Size };

Order orderOf(const QString &sortMode)
{
    return sortMode == QLatin1String("Album")   ? Order::Album
        : sortMode == QLatin1String("Rok")      ? Order::Year
        : sortMode == QStringLiteral("Rozmiar") ? Order::Size
                                                : Order::Artist;
}

const QString &yearOf(const Album &album)
{
    static const QString none;
    return album.tracks.empty() ? none : album.tracks.front().info.year;
}

/// A stable sort by a value of each item that is worked out once.
template <typename Item, typename ValueOf, typename Before>
void sortByValue(std::vector<Item> &items, const ValueOf &valueOf, const Before &before)
{
    using Value = std::decay_t<decltype(valueOf(items.front()))>;
    std::vector<std::pair<Value, std::size_t>> values;
    values.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        values.emplace_back(valueOf(items[i]), i);
    }
    std::stable_sort(
        values.begin(), values.end(), [&](const auto &a, const auto &b) { return before(a.first, b.first); });
    std::vector<Item> sorted;
    sorted.reserve(items.size());
    for (const auto &entry : values) {
        sorted.push_back(std::move(items[entry.second]));
    }
    items = std::move(sorted);
}

void sortAlbums(AlbumList &albums, Order order)
{
    using Shared = std::shared_ptr<const Album>;
    switch (order) {
    case Order::Album:
        TextOrder::stableSort(albums, [](const Shared &album) { return album->title; });
        break;
    case Order::Year: // newest first
        sortByValue(albums, [](const Shared &album) { return yearOf(*album); }, std::greater<>());
        break;
    case Order::Size: // largest first
        sortByValue(albums, [](const Shared &album) { return album->bytes(); }, std::greater<>());
        break;
    case Order::Artist:
        TextOrder::stableSort(albums, [](const Shared &album) { return QString(album->artist + album->title); });
        break;
    }
}

void sortTracks(std::vector<Track> &tracks, Order order)
{
    switch (order) {
    case Order::Album:
        TextOrder::stableSort(tracks, [](const Track &track) { return QString(track.album + track.title); });
        break;
    case Order::Year: // newest first, then by title
        sortByValue(
            tracks, [](const Track &track) { return std::pair(track.info.year, track.title); },
            [](const auto &a, const auto &b) { return a.first != b.first ? b.first < a.first : a.second < b.second; });
        break;
    case Order::Size: // largest first
        sortByValue(tracks, [](const Track &track) { return track.bytes; }, std::greater<>());
        break;
    case Order::Artist:
        TextOrder::stableSort(tracks, [](const Track &track) { return QString(track.artist + track.title); });
        break;
    }
}

bool holdsAny(const Album &album, const QSet<QUuid> &tracks)
{
    return std::any_of(
        album.tracks.begin(), album.tracks.end(), [&tracks](const Track &track) { return tracks.contains(track.id); });
}

void giveArtwork(std::vector<Track> &tracks, const QSet<QUuid> &ids, const QByteArray &image)
{
    for (Track &track : tracks) {
        if (ids.contains(track.id)) {
            track.artwork = image;
        }
    }
}

/// Puts the new records of albums in the place of the old ones.
void renewAlbums(AlbumList &albums, const QHash<const Album *, std::shared_ptr<const Album>> &changed)
{
    for (std::shared_ptr<const Album> &album : albums) {
        if (const auto renewed = changed.constFind(album.get()); renewed != changed.constEnd()) {
            album = *renewed;
        }
    }
}

} // namespace

bool isHighResolution(const AudioInfo &info)
{
    return info.bitDepth >= 17 || info.sampleRate >= 48001;
}

const std::vector<Track> &MarluneModel::activeTracks() const
{
    return m_libraryOnDevice ? m_deviceTracks : m_tracks;
}

bool MarluneModel::matches(const Track &track) const
{
    if (!formatMatches(track.info.codec, m_formatFilter) || (m_hiResOnly && !isHighResolution(track.info))) {
        return false;
    }
    return m_search.isEmpty() || TextOrder::contains(track.artist + u' ' + track.album + u' ' + track.title, m_search);
}

MarluneModel::Derived &MarluneModel::derived() const
{
    if (const int language = int(TextOrder::language()); m_derived.language != language) {
        m_derived = {.grouped = {}, .albums = {}, .filteredTracks = {}, .language = language};
    }
    return m_derived;
}

const AlbumList &MarluneModel::everyAlbum() const
{
    Derived &kept = derived();
    if (!kept.grouped) {
        kept.grouped.emplace();
        for (Album &album : AlbumGrouping::albums(activeTracks())) {
            kept.grouped->push_back(std::make_shared<const Album>(std::move(album)));
        }
    }
    return *kept.grouped;
}

std::shared_ptr<const Album> MarluneModel::albumWith(const QUuid &trackId) const
{
    const auto isTheTrack = [&](const Track &track) { return track.id == trackId; };
    for (const std::shared_ptr<const Album> &album : everyAlbum()) {
        if (std::any_of(album->tracks.begin(), album->tracks.end(), isTheTrack)) {
            return album;
        }
    }
    return nullptr;
}

std::shared_ptr<const AlbumList> MarluneModel::albums() const
{
    Derived &kept = derived();
    if (!kept.albums) {
        const AlbumList &all = everyAlbum();
        AlbumList shown;
        std::copy_if(all.begin(), all.end(), std::back_inserter(shown), [this](const auto &album) {
            return std::any_of(
                album->tracks.begin(), album->tracks.end(), [this](const Track &track) { return matches(track); });
        });
        sortAlbums(shown, orderOf(m_sortMode));
        kept.albums = std::make_shared<const AlbumList>(std::move(shown));
    }
    return kept.albums;
}

std::shared_ptr<const std::vector<Track>> MarluneModel::filteredTracks() const
{
    Derived &kept = derived();
    if (!kept.filteredTracks) {
        std::vector<Track> shown;
        std::copy_if(activeTracks().begin(), activeTracks().end(), std::back_inserter(shown),
            [this](const Track &track) { return matches(track); });
        sortTracks(shown, orderOf(m_sortMode));
        kept.filteredTracks = std::make_shared<const std::vector<Track>>(std::move(shown));
    }
    return kept.filteredTracks;
}

std::size_t MarluneModel::filteredTrackCount() const
{
    if (const Derived &kept = derived(); kept.filteredTracks) {
        return kept.filteredTracks->size();
    }
    return std::size_t(std::count_if(
        activeTracks().begin(), activeTracks().end(), [this](const Track &track) { return matches(track); }));
}

void MarluneModel::tracksWereChanged()
{
    m_derived = {};
    Q_EMIT tracksChanged();
    Q_EMIT browsingChanged();
}

/// Grouping, filters and orders do not look at covers: the lists keep their order, and every other album its record.
void MarluneModel::setArtwork(const QSet<QUuid> &ids, const QByteArray &image, bool onDevice)
{
    giveArtwork(onDevice ? m_deviceTracks : m_tracks, ids, image);
    Q_EMIT artworkChanged();
    if (onDevice != m_libraryOnDevice) {
        return;
    }
    QHash<const Album *, std::shared_ptr<const Album>> changed;
    if (m_derived.grouped) {
        for (std::shared_ptr<const Album> &album : *m_derived.grouped) {
            if (holdsAny(*album, ids)) {
                Album copy = *album;
                giveArtwork(copy.tracks, ids, image);
                changed.insert(album.get(), std::make_shared<const Album>(std::move(copy)));
            }
        }
        renewAlbums(*m_derived.grouped, changed);
    }
    if (m_derived.albums) {
        AlbumList shown = *m_derived.albums;
        renewAlbums(shown, changed);
        m_derived.albums = std::make_shared<const AlbumList>(std::move(shown));
    }
    m_derived.filteredTracks.reset();
    Q_EMIT browsingChanged();
}

void MarluneModel::browsingWasChanged()
{
    m_derived.albums.reset();
    m_derived.filteredTracks.reset();
    Q_EMIT browsingChanged();
}

void MarluneModel::setLibraryOnDevice(bool onDevice)
{
    if (m_libraryOnDevice != onDevice) {
        m_libraryOnDevice = onDevice;
        m_derived = {};
        forgetDuplicates();
        Q_EMIT libraryOnDeviceChanged();
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setSearch(const QString &text)
{
    if (m_search != text) {
        m_search = text;
        Q_EMIT searchChanged();
        browsingWasChanged();
    }
}

void MarluneModel::setFormatFilter(const QString &filter)
{
    if (m_formatFilter != filter) {
        m_formatFilter = filter;
        Q_EMIT formatFilterChanged();
        browsingWasChanged();
    }
}

void MarluneModel::setHiResOnly(bool only)
{
    if (m_hiResOnly != only) {
        m_hiResOnly = only;
        Q_EMIT hiResOnlyChanged();
        browsingWasChanged();
    }
}

void MarluneModel::setSortMode(const QString &mode)
{
    if (m_sortMode != mode) {
        m_sortMode = mode;
        m_environment.settings.setText(QStringLiteral("sortMode"), mode);
        Q_EMIT sortModeChanged();
        browsingWasChanged();
    }
}

void MarluneModel::setViewMode(const QString &mode)
{
    if (m_viewMode != mode) {
        m_viewMode = mode;
        m_environment.settings.setText(QStringLiteral("viewMode"), mode);
        Q_EMIT viewModeChanged();
    }
}

void MarluneModel::setTileSize(double size)
{
    if (m_tileSize != size) {
        m_tileSize = size;
        m_environment.settings.setNumber(QStringLiteral("tileSize"), size);
        Q_EMIT tileSizeChanged();
    }
}

void MarluneModel::setOpenAlbum(const std::optional<Album> &album)
{
    m_openAlbum = album;
    Q_EMIT openAlbumChanged();
}

std::vector<Track> MarluneModel::queue() const
{
    std::vector<Track> result;
    if (!m_queued.isEmpty()) {
        std::copy_if(m_tracks.begin(), m_tracks.end(), std::back_inserter(result),
            [this](const Track &track) { return m_queued.contains(track.id); });
    }
    return result;
}

std::int64_t MarluneModel::queueBytes() const
{
    std::int64_t sum = 0;
    for (const Track &track : m_tracks) {
        sum += m_queued.contains(track.id) ? track.bytes : 0;
    }
    return sum;
}

QSet<QUuid> &MarluneModel::selectionTarget()
{
    return m_libraryOnDevice ? m_selectedOnDevice : m_queued;
}

void MarluneModel::toggle(const Album &album)
{
    QSet<QUuid> &target = selectionTarget();
    const bool all = std::all_of(
        album.tracks.begin(), album.tracks.end(), [&](const Track &track) { return target.contains(track.id); });
    for (const Track &track : album.tracks) {
        if (all) {
            target.remove(track.id);
        } else {
            target.insert(track.id);
        }
    }
    Q_EMIT selectionChanged();
}

void MarluneModel::toggleTrack(const Track &track)
{
    QSet<QUuid> &target = selectionTarget();
    if (!target.remove(track.id)) {
        target.insert(track.id);
    }
    Q_EMIT selectionChanged();
}

void MarluneModel::clearQueue()
{
    if (!m_busy && !m_queued.isEmpty()) {
        m_queued.clear();
        Q_EMIT selectionChanged();
    }
}
