// A library's lists, worked out ahead: what a search looks through, each order, and what belongs to which album.
//
// A value about the tracks of one moment and in the order of texts of one language; it never changes, so any thread may
// read it. Making one of 100,000 tracks takes a second, reading a list off it a few milliseconds. Tracks are named by
// their places in the list that it was made of, albums by theirs among the groups of those tracks.
#pragma once

#include "library/AlbumGrouping.h"

#include "model/BrowsingWords.h"

#include "platform/text/TextOrder.h"

#include <QHash>
#include <QUuid>

#include <array>
#include <memory>
#include <optional>
#include <vector>

/// Tracks as their places among the active ones: no track is copied. Valid until a track is added or removed.
using TrackPlaces = std::vector<std::uint32_t>;

/// More than 16 bits a sample or more than 48 kHz.
[[nodiscard]] bool isHighResolution(const AudioInfo &info);

/// What the user wants to see.
struct ListFilter {
    QString search;
    QString format = formatFilterText(FormatFilter::Everything);
    bool hiResOnly = false;

    [[nodiscard]] bool passes(const Track &track) const;
};

/// The tracks that pass a filter.
struct TrackMatches {
    std::vector<bool> places; ///< one for each track
    std::size_t count = 0;
    bool highResolution = false; ///< one of them is
};

/// What a list's row knows its track by.
struct TrackIdentity {
    QUuid id;
    std::size_t file = 0; ///< a hash of its path: what stays when it is read again
};
using TrackIdentities = std::vector<TrackIdentity>;

class LibraryIndex {
public:
    /// `groups` are those of the tracks.
    LibraryIndex(const std::vector<Track> &tracks, const std::vector<AlbumGrouping::Group> &groups);
    /// The same without the tracks that are `gone`, where those are whole albums: null where they are not.
    [[nodiscard]] std::shared_ptr<const LibraryIndex> without(const std::vector<bool> &gone) const;

    /// Whether the order of texts is still the one that it was made in.
    [[nodiscard]] bool isCurrent() const { return m_language == TextOrder::language(); }
    [[nodiscard]] std::size_t size() const { return m_albumOf.size(); }

    [[nodiscard]] TrackMatches matches(const ListFilter &filter) const;
    /// Those tracks, in order.
    [[nodiscard]] TrackPlaces tracks(const TrackMatches &matches, SortMode order) const;
    /// The albums that hold one of them, in order.
    [[nodiscard]] std::vector<std::uint32_t> albums(const TrackMatches &matches, SortMode order) const;

    /// By place: lists of all tracks need not look into each.
    [[nodiscard]] const std::shared_ptr<const TrackIdentities> &identities() const { return m_identities; }
    [[nodiscard]] std::optional<std::uint32_t> placeOf(const QUuid &track) const;
    [[nodiscard]] std::uint32_t albumAt(std::uint32_t place) const { return m_albumOf[place]; }
    [[nodiscard]] std::optional<std::uint32_t> albumOf(const QString &albumId) const;

private:
    using Order = std::vector<std::uint32_t>;

    LibraryIndex() = default;
    void noteTracks(const std::vector<Track> &tracks);
    [[nodiscard]] QStringView textAt(std::uint32_t place) const;

    TextOrder::Language m_language = TextOrder::language();
    QString m_texts; ///< what a search looks through, folded, of all tracks
    std::vector<std::uint32_t> m_textEnds;
    std::vector<QString> m_codecs; ///< the different ones
    std::vector<std::uint32_t> m_codecOf; ///< of each track
    std::vector<bool> m_highResolution;
    std::vector<std::uint32_t> m_albumOf;
    std::array<Order, allSortModes.size()> m_trackOrders;
    std::array<Order, allSortModes.size()> m_albumOrders;
    std::shared_ptr<const TrackIdentities> m_identities; ///< of each track
    std::vector<std::pair<QUuid, std::uint32_t>> m_places; ///< by id
    QHash<QString, std::uint32_t> m_albums;
};
