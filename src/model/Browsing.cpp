#include "model/Browsing.h"

#include "library/AlbumGrouping.h"

#include "platform/text/TextOrder.h"

#include <algorithm>

namespace {

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

void sortAlbums(AlbumList &albums, SortMode order)
{
    using Shared = std::shared_ptr<const Album>;
    switch (order) {
    case SortMode::Album:
        TextOrder::stableSort(albums, [](const Shared &album) { return album->title; });
        break;
    case SortMode::Year: // newest first
        sortByValue(albums, [](const Shared &album) { return yearOf(*album); }, std::greater<>());
        break;
    case SortMode::Size: // largest first
        sortByValue(albums, [](const Shared &album) { return album->bytes(); }, std::greater<>());
        break;
    case SortMode::Artist:
        TextOrder::stableSort(albums, [](const Shared &album) { return QString(album->artist + album->title); });
        break;
    }
}

void sortTracks(TrackPlaces &places, const std::vector<Track> &tracks, SortMode order)
{
    const auto at = [&tracks](std::uint32_t place) -> const Track & { return tracks[place]; };
    switch (order) {
    case SortMode::Album:
        TextOrder::stableSort(places, [&](std::uint32_t place) { return QString(at(place).album + at(place).title); });
        break;
    case SortMode::Year: // newest first, then by title
        sortByValue(
            places, [&](std::uint32_t place) { return std::pair(at(place).info.year, at(place).title); },
            [](const auto &a, const auto &b) { return a.first != b.first ? b.first < a.first : a.second < b.second; });
        break;
    case SortMode::Size: // largest first
        sortByValue(places, [&](std::uint32_t place) { return at(place).bytes; }, std::greater<>());
        break;
    case SortMode::Artist:
        TextOrder::stableSort(places, [&](std::uint32_t place) { return QString(at(place).artist + at(place).title); });
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

void Browsing::append(Side side, std::vector<Track> tracks)
{
    std::vector<Track> &target = m_tracks[place(side)];
    target.insert(target.end(), std::move_iterator(tracks.begin()), std::move_iterator(tracks.end()));
    m_derived = {};
}

void Browsing::remove(const QSet<QUuid> &ids)
{
    std::erase_if(m_tracks[place(Side::Computer)], [&](const Track &track) { return ids.contains(track.id); });
    dequeue(ids);
    m_derived = {};
}

void Browsing::clearDevice()
{
    m_tracks[place(Side::Device)].clear();
    m_chosen[place(Side::Device)].clear();
    m_derived = {};
}

void Browsing::setArtwork(Side side, const QSet<QUuid> &ids, const QByteArray &image)
{
    giveArtwork(m_tracks[place(side)], ids, image);
    if (side != m_side) {
        return;
    }
    QHash<const Album *, std::shared_ptr<const Album>> changed;
    if (m_derived.grouped) {
        for (const std::shared_ptr<const Album> &album : *m_derived.grouped) {
            if (holdsAny(*album, ids)) {
                Album copy = *album;
                giveArtwork(copy.tracks, ids, image);
                changed.insert(album.get(), std::make_shared<const Album>(std::move(copy)));
            }
        }
        renewAlbums(*m_derived.grouped, changed);
    }
    if (m_derived.albums) {
        AlbumList listed = *m_derived.albums;
        renewAlbums(listed, changed);
        m_derived.albums = std::make_shared<const AlbumList>(std::move(listed));
    }
}

bool Browsing::setSide(Side side)
{
    if (m_side == side) {
        return false;
    }
    m_side = side;
    m_derived = {};
    return true;
}

template <typename Field> bool Browsing::set(Field &field, const Field &value)
{
    if (field == value) {
        return false;
    }
    field = value;
    m_derived.albums.reset();
    m_derived.filteredTracks.reset();
    return true;
}

bool Browsing::setSearch(const QString &text)
{
    return set(m_search, text);
}

bool Browsing::setFormatFilter(const QString &filter)
{
    return set(m_formatFilter, filter);
}

bool Browsing::setHiResOnly(bool only)
{
    return set(m_hiResOnly, only);
}

bool Browsing::setSortMode(const QString &mode)
{
    return set(m_sortMode, mode);
}

bool Browsing::matches(const Track &track) const
{
    if (!passesFormatFilter(track.info.codec, m_formatFilter) || (m_hiResOnly && !isHighResolution(track.info))) {
        return false;
    }
    return m_search.isEmpty() || TextOrder::contains(track.artist + u' ' + track.album + u' ' + track.title, m_search);
}

Browsing::Derived &Browsing::derived() const
{
    if (const int language = int(TextOrder::language()); m_derived.language != language) {
        m_derived = {.grouped = {}, .albums = {}, .filteredTracks = {}, .language = language};
    }
    return m_derived;
}

const AlbumList &Browsing::everyAlbum() const
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

std::shared_ptr<const Album> Browsing::albumWith(const QUuid &trackId) const
{
    const auto isTheTrack = [&](const Track &track) { return track.id == trackId; };
    for (const std::shared_ptr<const Album> &album : everyAlbum()) {
        if (std::any_of(album->tracks.begin(), album->tracks.end(), isTheTrack)) {
            return album;
        }
    }
    return nullptr;
}

std::shared_ptr<const Album> Browsing::albumOf(const QString &albumId) const
{
    const AlbumList &all = everyAlbum();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto &album) { return album->id() == albumId; });
    return found == all.end() ? nullptr : *found;
}

std::shared_ptr<const AlbumList> Browsing::albums() const
{
    Derived &kept = derived();
    if (!kept.albums) {
        const AlbumList &all = everyAlbum();
        AlbumList shown;
        std::copy_if(all.begin(), all.end(), std::back_inserter(shown), [this](const auto &album) {
            return std::any_of(
                album->tracks.begin(), album->tracks.end(), [this](const Track &track) { return matches(track); });
        });
        sortAlbums(shown, sortModeFromText(m_sortMode));
        kept.albums = std::make_shared<const AlbumList>(std::move(shown));
    }
    return kept.albums;
}

std::shared_ptr<const TrackPlaces> Browsing::filteredTracks() const
{
    Derived &kept = derived();
    if (!kept.filteredTracks) {
        const std::vector<Track> &all = activeTracks();
        TrackPlaces shown;
        for (std::uint32_t place = 0; place < all.size(); ++place) {
            if (matches(all[place])) {
                shown.push_back(place);
            }
        }
        sortTracks(shown, all, sortModeFromText(m_sortMode));
        kept.filteredTracks = std::make_shared<const TrackPlaces>(std::move(shown));
    }
    return kept.filteredTracks;
}

std::size_t Browsing::filteredTrackCount() const
{
    if (const Derived &kept = derived(); kept.filteredTracks) {
        return kept.filteredTracks->size();
    }
    return std::size_t(std::count_if(
        activeTracks().begin(), activeTracks().end(), [this](const Track &track) { return matches(track); }));
}

std::vector<Track> Browsing::queue() const
{
    const QSet<QUuid> &queued = chosen(Side::Computer);
    std::vector<Track> result;
    if (!queued.isEmpty()) {
        const std::vector<Track> &all = tracks(Side::Computer);
        std::copy_if(all.begin(), all.end(), std::back_inserter(result),
            [&queued](const Track &track) { return queued.contains(track.id); });
    }
    return result;
}

std::int64_t Browsing::queueBytes() const
{
    const QSet<QUuid> &queued = chosen(Side::Computer);
    std::int64_t sum = 0;
    for (const Track &track : tracks(Side::Computer)) {
        sum += queued.contains(track.id) ? track.bytes : 0;
    }
    return sum;
}

void Browsing::enqueue(const std::vector<Track> &tracks)
{
    for (const Track &track : tracks) {
        m_chosen[place(Side::Computer)].insert(track.id);
    }
}

void Browsing::enqueue(const QSet<QUuid> &ids)
{
    for (const Track &track : tracks(Side::Computer)) {
        if (ids.contains(track.id)) {
            m_chosen[place(Side::Computer)].insert(track.id);
        }
    }
}

void Browsing::toggle(const Album &album)
{
    QSet<QUuid> ids;
    for (const Track &track : album.tracks) {
        ids.insert(track.id);
    }
    toggle(ids);
}

void Browsing::toggle(const QSet<QUuid> &tracks)
{
    QSet<QUuid> &target = m_chosen[place(m_side)];
    if (target.contains(tracks)) {
        target.subtract(tracks);
    } else {
        target.unite(tracks);
    }
}

void Browsing::toggleTrack(const Track &track)
{
    QSet<QUuid> &target = m_chosen[place(m_side)];
    if (!target.remove(track.id)) {
        target.insert(track.id);
    }
}
