// What the library page is about: the tracks of the computer and of the device, which of them are listed and in what
// order, and which are chosen.
//
// A plain part of the model, of the UI thread; whoever changes it tells the pages. The lists that follow from the
// tracks are kept until something that they depend on changes, and copy no track that they share with another list.
#pragma once

#include "library/Album.h"

#include "model/BrowsingWords.h"

#include <QSet>
#include <QUuid>

#include <memory>
#include <optional>
#include <vector>

/// Albums that one list shares with another: filtering and sorting copy no track.
using AlbumList = std::vector<std::shared_ptr<const Album>>;

/// Tracks as their places among the active ones: no track is copied. Good until those change, and their order or number
/// with them.
using TrackPlaces = std::vector<std::uint32_t>;

/// More than 16 bits a sample or more than 48 kHz.
[[nodiscard]] bool isHighResolution(const AudioInfo &info);

/// Where tracks are.
enum class Side : std::uint8_t { Computer, Device };

class Browsing {
public:
    // The tracks of both sides, and the side that is shown.
    [[nodiscard]] const std::vector<Track> &tracks(Side side) const { return m_tracks[place(side)]; }
    [[nodiscard]] const std::vector<Track> &activeTracks() const { return tracks(m_side); }
    void append(Side side, std::vector<Track> tracks);
    /// Takes the tracks of these ids off the computer's side, and off the queue.
    void remove(const QSet<QUuid> &ids);
    /// Forgets the device's tracks and what is selected of them.
    void clearDevice();
    /// Gives these tracks another cover. What is listed stays grouped and sorted as it is.
    void setArtwork(Side side, const QSet<QUuid> &ids, const QByteArray &image);
    [[nodiscard]] Side side() const { return m_side; }
    /// Each setter says whether that was a change.
    bool setSide(Side side);

    // Filters and order.
    [[nodiscard]] const QString &search() const { return m_search; }
    bool setSearch(const QString &text);
    [[nodiscard]] const QString &formatFilter() const { return m_formatFilter; }
    bool setFormatFilter(const QString &filter);
    [[nodiscard]] bool hiResOnly() const { return m_hiResOnly; }
    bool setHiResOnly(bool only);
    [[nodiscard]] const QString &sortMode() const { return m_sortMode; }
    bool setSortMode(const QString &mode);
    [[nodiscard]] bool matches(const Track &track) const;

    // Lists of the side that is shown.
    /// All of its albums, filtered out or not, as they were grouped.
    [[nodiscard]] const AlbumList &everyAlbum() const;
    /// Those with a track that matches, whole, in order.
    [[nodiscard]] std::shared_ptr<const AlbumList> albums() const;
    /// The album, filtered out or not, that holds a track of this id.
    [[nodiscard]] std::shared_ptr<const Album> albumWith(const QUuid &trackId) const;
    /// The one of this identity, filtered out or not.
    [[nodiscard]] std::shared_ptr<const Album> albumOf(const QString &albumId) const;
    [[nodiscard]] std::shared_ptr<const TrackPlaces> filteredTracks() const;
    /// The number of filteredTracks(), without making the list.
    [[nodiscard]] std::size_t filteredTrackCount() const;

    // What is chosen: queued on the computer's side, selected on the device's.
    [[nodiscard]] const QSet<QUuid> &chosen(Side side) const { return m_chosen[place(side)]; }
    /// The queued tracks in the library's order.
    [[nodiscard]] std::vector<Track> queue() const;
    [[nodiscard]] std::int64_t queueBytes() const;
    void enqueue(const std::vector<Track> &tracks);
    /// Those of the ids that are the computer's tracks.
    void enqueue(const QSet<QUuid> &ids);
    void dequeue(const QSet<QUuid> &ids) { m_chosen[place(Side::Computer)].subtract(ids); }
    void clearQueue() { m_chosen[place(Side::Computer)].clear(); }
    /// Adds the album to the set of the side that is shown, or takes it out if all of it is there.
    void toggle(const Album &album);
    /// The same with tracks of that side.
    void toggle(const QSet<QUuid> &tracks);
    void toggleTrack(const Track &track);

private:
    /// Derived lists and the language that they were sorted in; absent when something that they depend on has changed.
    struct Derived {
        std::optional<AlbumList> grouped; ///< depends on the active tracks alone
        std::shared_ptr<const AlbumList> albums;
        std::shared_ptr<const TrackPlaces> filteredTracks;
        int language = -1;
    };

    [[nodiscard]] static constexpr std::size_t place(Side side) { return side == Side::Device ? 1 : 0; }
    /// A setter's work: what is listed follows from the field.
    template <typename Field> bool set(Field &field, const Field &value);
    [[nodiscard]] Derived &derived() const;

    std::array<std::vector<Track>, 2> m_tracks;
    std::array<QSet<QUuid>, 2> m_chosen;
    Side m_side = Side::Computer;
    QString m_search;
    QString m_formatFilter = formatFilterText(FormatFilter::Everything);
    bool m_hiResOnly = false;
    QString m_sortMode = sortModeText(SortMode::Artist);
    mutable Derived m_derived;
};
