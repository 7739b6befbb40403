#include "model/LibraryIndex.h"

#include "platform/tasks/Parallel.h"

#include <algorithm>
#include <numeric>

namespace {

using Places = std::vector<std::uint32_t>;

Places allPlaces(std::size_t count)
{
    Places places(count);
    std::iota(places.begin(), places.end(), 0U);
    return places;
}

/// Places by a value of each that is worked out once.
template <typename ValueOf, typename Before>
Places orderedBy(std::size_t count, const ValueOf &valueOf, const Before &before)
{
    std::vector<std::decay_t<decltype(valueOf(0U))>> values;
    values.reserve(count);
    for (std::uint32_t place = 0; place < count; ++place) {
        values.push_back(valueOf(place));
    }
    Places places = allPlaces(count);
    std::stable_sort(
        places.begin(), places.end(), [&](std::uint32_t a, std::uint32_t b) { return before(values[a], values[b]); });
    return places;
}

template <typename TextOf> Places orderedByText(std::size_t count, const TextOf &textOf)
{
    Places places = allPlaces(count);
    TextOrder::stableSort(places, textOf);
    return places;
}

QString searchText(const Track &track)
{
    return track.artist + u' ' + track.album + u' ' + track.title;
}

std::size_t hashOf(const std::filesystem::path &file)
{
    return qHashBits(file.native().data(), file.native().size());
}

/// What `places` name once some have gone; `renamed` holds the new names of those that stay.
Places withoutGone(const Places &places, const std::vector<bool> &gone, const Places &renamed)
{
    Places left;
    left.reserve(places.size());
    for (const std::uint32_t place : places) {
        if (!gone[place]) {
            left.push_back(renamed[place]);
        }
    }
    return left;
}

/// The name of each that stays, counted anew.
Places renamedAfter(const std::vector<bool> &gone)
{
    Places renamed(gone.size());
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < gone.size(); ++i) {
        renamed[i] = next;
        next += gone[i] ? 0 : 1;
    }
    return renamed;
}

Places trackOrder(const std::vector<Track> &tracks, SortMode mode)
{
    switch (mode) {
    case SortMode::Album:
        return orderedByText(
            tracks.size(), [&](std::uint32_t at) { return QString(tracks[at].album + tracks[at].title); });
    case SortMode::Year: // newest first, then by title
        return orderedBy(
            tracks.size(), [&](std::uint32_t at) { return std::pair(tracks[at].info.year, tracks[at].title); },
            [](const auto &a, const auto &b) { return a.first != b.first ? b.first < a.first : a.second < b.second; });
    case SortMode::Size: // largest first
        return orderedBy(tracks.size(), [&](std::uint32_t at) { return tracks[at].bytes; }, std::greater<>());
    case SortMode::Artist:
        break;
    }
    return orderedByText(
        tracks.size(), [&](std::uint32_t at) { return QString(tracks[at].artist + tracks[at].title); });
}

Places albumOrder(const std::vector<Track> &tracks, const std::vector<AlbumGrouping::Group> &groups, SortMode mode)
{
    const auto bytesOf = [&](std::uint32_t album) {
        const auto &of = groups[album].tracks;
        return std::accumulate(of.begin(), of.end(), std::int64_t(0),
            [&](std::int64_t sum, std::size_t place) { return sum + tracks[place].bytes; });
    };
    switch (mode) {
    case SortMode::Album:
        return orderedByText(groups.size(), [&](std::uint32_t album) { return groups[album].title; });
    case SortMode::Year: // newest first
        return orderedBy(
            groups.size(), [&](std::uint32_t album) { return tracks[groups[album].tracks.front()].info.year; },
            std::greater<>());
    case SortMode::Size: // largest first
        return orderedBy(groups.size(), bytesOf, std::greater<>());
    case SortMode::Artist:
        break;
    }
    return orderedByText(
        groups.size(), [&](std::uint32_t album) { return QString(groups[album].artist + groups[album].title); });
}

} // namespace

bool isHighResolution(const AudioInfo &info)
{
    return info.bitDepth >= 17 || info.sampleRate >= 48001;
}

bool ListFilter::passes(const Track &track) const
{
    if (!passesFormatFilter(track.info.codec, format) || (hiResOnly && !isHighResolution(track.info))) {
        return false;
    }
    return search.isEmpty() || TextOrder::contains(searchText(track), search);
}

LibraryIndex::LibraryIndex(const std::vector<Track> &tracks, const std::vector<AlbumGrouping::Group> &groups)
{
    m_albumOf.resize(tracks.size());
    for (std::uint32_t album = 0; album < groups.size(); ++album) {
        m_albums.insert(groups[album].key, album);
        for (const std::size_t place : groups[album].tracks) {
            m_albumOf[place] = album;
        }
    }
    constexpr std::size_t orders = allSortModes.size();
    Parallel::forEach(1 + 2 * orders, 2, [&](std::size_t part, int) {
        if (part < orders) {
            m_trackOrders[part] = trackOrder(tracks, allSortModes[part]);
        } else if (part == orders) {
            noteTracks(tracks);
        } else {
            m_albumOrders[part - orders - 1] = albumOrder(tracks, groups, allSortModes[part - orders - 1]);
        }
    });
}

void LibraryIndex::noteTracks(const std::vector<Track> &tracks)
{
    QHash<QString, std::uint32_t> codecs;
    const auto identities = std::make_shared<TrackIdentities>();
    for (std::uint32_t place = 0; place < tracks.size(); ++place) {
        const Track &track = tracks[place];
        m_texts += TextOrder::folded(searchText(track));
        m_textEnds.push_back(std::uint32_t(m_texts.size()));
        const std::uint32_t codec = codecs.value(track.info.codec, std::uint32_t(m_codecs.size()));
        if (codec == m_codecs.size()) {
            codecs.insert(track.info.codec, codec);
            m_codecs.push_back(track.info.codec);
        }
        m_codecOf.push_back(codec);
        m_highResolution.push_back(isHighResolution(track.info));
        identities->push_back({.id = track.id, .file = hashOf(track.url)});
        m_places.emplace_back(track.id, place);
    }
    m_identities = identities;
    std::sort(m_places.begin(), m_places.end());
}

std::shared_ptr<const LibraryIndex> LibraryIndex::without(const std::vector<bool> &gone) const
{
    std::vector<bool> goneAlbums(std::size_t(m_albums.size()));
    for (std::uint32_t place = 0; place < size(); ++place) {
        goneAlbums[m_albumOf[place]] = goneAlbums[m_albumOf[place]] || gone[place];
    }
    const Places places = renamedAfter(gone);
    const Places albums = renamedAfter(goneAlbums);
    const std::shared_ptr<LibraryIndex> left(new LibraryIndex);
    left->m_language = m_language;
    left->m_codecs = m_codecs;
    const auto identities = std::make_shared<TrackIdentities>();
    for (std::uint32_t place = 0; place < size(); ++place) {
        if (gone[place] != goneAlbums[m_albumOf[place]]) {
            return nullptr;
        }
        if (!gone[place]) {
            left->m_texts += textAt(place);
            left->m_textEnds.push_back(std::uint32_t(left->m_texts.size()));
            left->m_codecOf.push_back(m_codecOf[place]);
            left->m_highResolution.push_back(m_highResolution[place]);
            left->m_albumOf.push_back(albums[m_albumOf[place]]);
            identities->push_back((*m_identities)[place]);
        }
    }
    for (const SortMode mode : allSortModes) {
        left->m_trackOrders[std::size_t(mode)] = withoutGone(m_trackOrders[std::size_t(mode)], gone, places);
        left->m_albumOrders[std::size_t(mode)] = withoutGone(m_albumOrders[std::size_t(mode)], goneAlbums, albums);
    }
    for (const auto &[id, place] : m_places) {
        if (!gone[place]) {
            left->m_places.emplace_back(id, places[place]);
        }
    }
    left->m_identities = identities;
    for (auto album = m_albums.begin(); album != m_albums.end(); ++album) {
        if (!goneAlbums[*album]) {
            left->m_albums.insert(album.key(), albums[*album]);
        }
    }
    return left;
}

QStringView LibraryIndex::textAt(std::uint32_t place) const
{
    const std::uint32_t begin = place == 0 ? 0 : m_textEnds[place - 1];
    return QStringView(m_texts).mid(begin, m_textEnds[place] - begin);
}

TrackMatches LibraryIndex::matches(const ListFilter &filter) const
{
    std::vector<bool> passing;
    for (const QString &codec : m_codecs) {
        passing.push_back(passesFormatFilter(codec, filter.format));
    }
    const QString wanted = TextOrder::folded(filter.search);
    TrackMatches found {.places = std::vector<bool>(size()), .count = 0, .highResolution = false};
    for (std::uint32_t place = 0; place < size(); ++place) {
        if (passing[m_codecOf[place]] && (!filter.hiResOnly || m_highResolution[place])
            && (wanted.isEmpty() || textAt(place).contains(wanted))) {
            found.places[place] = true;
            ++found.count;
            found.highResolution = found.highResolution || m_highResolution[place];
        }
    }
    return found;
}

TrackPlaces LibraryIndex::tracks(const TrackMatches &matches, SortMode order) const
{
    TrackPlaces shown;
    shown.reserve(matches.count);
    const Order &all = m_trackOrders[std::size_t(order)];
    std::copy_if(all.begin(), all.end(), std::back_inserter(shown),
        [&](std::uint32_t place) { return bool(matches.places[place]); });
    return shown;
}

std::vector<std::uint32_t> LibraryIndex::albums(const TrackMatches &matches, SortMode order) const
{
    const Order &all = m_albumOrders[std::size_t(order)];
    std::vector<bool> holding(all.size());
    for (std::uint32_t place = 0; place < size(); ++place) {
        if (matches.places[place]) {
            holding[m_albumOf[place]] = true;
        }
    }
    std::vector<std::uint32_t> shown;
    std::copy_if(
        all.begin(), all.end(), std::back_inserter(shown), [&](std::uint32_t album) { return bool(holding[album]); });
    return shown;
}

std::optional<std::uint32_t> LibraryIndex::placeOf(const QUuid &track) const
{
    const auto found = std::lower_bound(
        m_places.begin(), m_places.end(), track, [](const auto &entry, const QUuid &id) { return entry.first < id; });
    return found != m_places.end() && found->first == track ? std::optional(found->second) : std::nullopt;
}

std::optional<std::uint32_t> LibraryIndex::albumOf(const QString &albumId) const
{
    const auto found = m_albums.constFind(albumId);
    return found == m_albums.constEnd() ? std::nullopt : std::optional(*found);
}
