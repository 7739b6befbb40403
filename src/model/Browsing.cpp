#include "model/Browsing.h"

#include "library/AlbumGrouping.h"

#include "platform/tasks/Background.h"
#include "platform/tasks/Parallel.h"

#include <algorithm>
#include <utility>

namespace {

/// So many tracks are indexed at once, whoever waits.
constexpr std::size_t fewTracks = 2000;

/// Whether the group is the album of this record, with the same tracks.
bool isRecordOf(const Album &album, const AlbumGrouping::Group &group, const std::vector<Track> &tracks)
{
    return album.title == group.title && album.artist == group.artist
        && std::equal(album.tracks.begin(), album.tracks.end(), group.tracks.begin(), group.tracks.end(),
            [&](const Track &track, std::size_t place) { return track.id == tracks[place].id; });
}

void giveArtwork(std::vector<Track> &tracks, const QSet<QUuid> &ids, const QByteArray &image)
{
    for (Track &track : tracks) {
        if (ids.contains(track.id)) {
            track.artwork = image;
        }
    }
}

} // namespace

LibraryContents LibraryContents::prepared(std::shared_ptr<const std::vector<Track>> more) const
{
    const bool isMore = more && !more->empty();
    if (!isMore && index && index->isCurrent()) {
        return *this;
    }
    LibraryContents made {.tracks = tracks, .index = {}, .albums = {}};
    if (isMore && tracks->empty()) {
        made.tracks = std::move(more);
    } else if (isMore) {
        const auto joined = std::make_shared<std::vector<Track>>();
        joined->reserve(tracks->size() + more->size());
        joined->insert(joined->end(), tracks->begin(), tracks->end());
        joined->insert(joined->end(), more->begin(), more->end());
        made.tracks = joined;
    }

    const std::vector<AlbumGrouping::Group> groups = AlbumGrouping::groups(*made.tracks);
    AlbumList list(groups.size());
    Parallel::forEach(2, 2, [&](std::size_t part, int) {
        if (part == 0) {
            made.index = std::make_shared<const LibraryIndex>(*made.tracks, groups);
            return;
        }
        for (std::size_t at = 0; at < groups.size(); ++at) {
            const std::optional<std::uint32_t> before = index ? index->albumOf(groups[at].key) : std::nullopt;
            const bool isKept = before && isRecordOf(*(*albums)[*before], groups[at], *made.tracks);
            list[at] = isKept ? (*albums)[*before]
                              : std::make_shared<const Album>(AlbumGrouping::album(groups[at], *made.tracks));
        }
    });
    made.albums = std::make_shared<const AlbumList>(std::move(list));

    return made;
}

std::vector<Track> &Browsing::ownTracks(Side side)
{
    std::shared_ptr<const std::vector<Track>> &held = m_contents[place(side)].tracks;
    // Counting up, unlike looking at the count, sees what a job that has let go of them did before that.
    const std::shared_ptr<const std::vector<Track>> again = held;
    if (held.use_count() > 2) {
        held = std::make_shared<std::vector<Track>>(*again);
    }
    return *std::const_pointer_cast<std::vector<Track>>(held);
}

bool Browsing::land(Side side, const LibraryContents &base, const LibraryContents &made)
{
    LibraryContents &held = m_contents[place(side)];
    if (held.tracks != base.tracks || !made.index->isCurrent()) {
        return false;
    }
    held = made;
    m_queueSum.reset();
    return true;
}

bool Browsing::isReady(Side side) const
{
    const LibraryContents &held = contents(side);
    return held.tracks->size() <= fewTracks || (held.index && held.index->isCurrent());
}

void Browsing::remove(const QSet<QUuid> &ids)
{
    LibraryContents &held = m_contents[place(Side::Computer)];
    std::vector<bool> gone;
    gone.reserve(held.tracks->size());
    for (const Track &track : *held.tracks) {
        gone.push_back(ids.contains(track.id));
    }
    held.index = held.index ? held.index->without(gone) : nullptr;
    if (held.index) {
        AlbumList left = *held.albums;
        std::erase_if(left, [&](const auto &album) { return ids.contains(album->tracks.front().id); });
        held.albums = std::make_shared<const AlbumList>(std::move(left));
    }
    std::erase_if(ownTracks(Side::Computer), [&](const Track &track) { return ids.contains(track.id); });
    dequeue(ids);
}

void Browsing::clearDevice()
{
    BackgroundJobs::discard(
        std::make_shared<LibraryContents>(std::exchange(m_contents[place(Side::Device)], LibraryContents())));
    m_chosen[place(Side::Device)].clear();
}

void Browsing::setArtwork(Side side, const QSet<QUuid> &ids, const QByteArray &image)
{
    LibraryContents &held = m_contents[place(side)];
    std::vector<Track> &tracks = ownTracks(side);
    if (!held.index) {
        giveArtwork(tracks, ids, image);
        return;
    }
    QSet<std::uint32_t> changed;
    for (const QUuid &id : ids) {
        if (const std::optional<std::uint32_t> at = held.index->placeOf(id)) {
            tracks[*at].artwork = image;
            changed.insert(held.index->albumAt(*at));
        }
    }
    AlbumList albums = *held.albums;
    for (const std::uint32_t number : changed) {
        Album album = *albums[number];
        giveArtwork(album.tracks, ids, image);
        albums[number] = std::make_shared<const Album>(std::move(album));
    }
    held.albums = std::make_shared<const AlbumList>(std::move(albums));
    if (m_lists.index == held.index) {
        m_lists.albums.reset();
    }
}

bool Browsing::setSide(Side side)
{
    if (m_side == side) {
        return false;
    }
    m_side = side;
    return true;
}

template <typename Field> bool Browsing::set(Field &field, const Field &value)
{
    if (field == value) {
        return false;
    }
    field = value;
    m_lists = {};
    return true;
}

bool Browsing::setSearch(const QString &text)
{
    return set(m_filter.search, text);
}

bool Browsing::setFormatFilter(const QString &filter)
{
    return set(m_filter.format, filter);
}

bool Browsing::setHiResOnly(bool only)
{
    return set(m_filter.hiResOnly, only);
}

bool Browsing::setSortMode(const QString &mode)
{
    if (m_sortMode == mode) {
        return false;
    }
    m_sortMode = mode;
    m_lists.albums.reset();
    m_lists.tracks.reset();
    return true;
}

const LibraryContents &Browsing::indexed(Side side) const
{
    LibraryContents &held = m_contents[place(side)];
    // Of many tracks one whose order is another language's serves until a job has made one anew.
    if (!held.index || (isReady(side) && !held.index->isCurrent())) {
        held = held.prepared();
    }
    return held;
}

Browsing::Lists &Browsing::lists() const
{
    const LibraryContents &held = indexed(m_side);
    if (m_lists.index != held.index) {
        m_lists = {.index = held.index, .matches = {}, .albums = {}, .tracks = {}};
    }
    return m_lists;
}

std::shared_ptr<const Album> Browsing::albumWith(const QUuid &trackId) const
{
    const LibraryContents &held = indexed(m_side);
    const std::optional<std::uint32_t> at = held.index->placeOf(trackId);
    return at ? (*held.albums)[held.index->albumAt(*at)] : nullptr;
}

std::shared_ptr<const Album> Browsing::albumOf(Side side, const QString &albumId) const
{
    const LibraryContents &held = indexed(side);
    const std::optional<std::uint32_t> number = held.index->albumOf(albumId);
    return number ? (*held.albums)[*number] : nullptr;
}

std::shared_ptr<const TrackMatches> Browsing::trackMatches() const
{
    Lists &kept = lists();
    if (!kept.matches) {
        kept.matches = std::make_shared<const TrackMatches>(kept.index->matches(m_filter));
    }
    return kept.matches;
}

std::shared_ptr<const AlbumList> Browsing::albums() const
{
    Lists &kept = lists();
    if (!kept.albums) {
        const AlbumList &all = everyAlbum();
        AlbumList shown;
        for (const std::uint32_t number : kept.index->albums(*trackMatches(), sortModeFromText(m_sortMode))) {
            shown.push_back(all[number]);
        }
        kept.albums = std::make_shared<const AlbumList>(std::move(shown));
    }
    return kept.albums;
}

std::shared_ptr<const TrackPlaces> Browsing::filteredTracks() const
{
    Lists &kept = lists();
    if (!kept.tracks) {
        kept.tracks
            = std::make_shared<const TrackPlaces>(kept.index->tracks(*trackMatches(), sortModeFromText(m_sortMode)));
    }
    return kept.tracks;
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

const QueueSum &Browsing::queueSum() const
{
    if (!m_queueSum) {
        const QSet<QUuid> &queued = chosen(Side::Computer);
        m_queueSum.emplace();
        for (const Track &track : tracks(Side::Computer)) {
            if (queued.contains(track.id)) {
                ++m_queueSum->count;
                m_queueSum->bytes += track.bytes;
            }
        }
    }
    return *m_queueSum;
}

void Browsing::enqueue(const std::vector<Track> &tracks)
{
    QSet<QUuid> &queued = m_chosen[place(Side::Computer)];
    queued.reserve(queued.size() + qsizetype(tracks.size()));
    for (const Track &track : tracks) {
        queued.insert(track.id);
    }
    m_queueSum.reset();
}

void Browsing::dequeue(const QSet<QUuid> &ids)
{
    m_chosen[place(Side::Computer)].subtract(ids);
    m_queueSum.reset();
}

void Browsing::clearQueue()
{
    m_chosen[place(Side::Computer)].clear();
    m_queueSum.reset();
}

void Browsing::enqueue(const QSet<QUuid> &ids)
{
    for (const Track &track : tracks(Side::Computer)) {
        if (ids.contains(track.id)) {
            m_chosen[place(Side::Computer)].insert(track.id);
        }
    }
    m_queueSum.reset();
}

void Browsing::toggle(Side side, const Album &album)
{
    QSet<QUuid> ids;
    for (const Track &track : album.tracks) {
        ids.insert(track.id);
    }
    toggle(side, ids);
}

void Browsing::toggle(Side side, const QSet<QUuid> &tracks)
{
    QSet<QUuid> &target = m_chosen[place(side)];
    if (target.contains(tracks)) {
        target.subtract(tracks);
    } else {
        target.unite(tracks);
    }
    m_queueSum.reset();
}

void Browsing::toggleTrack(Side side, const Track &track)
{
    QSet<QUuid> &target = m_chosen[place(side)];
    if (!target.remove(track.id)) {
        target.insert(track.id);
    }
    m_queueSum.reset();
}
