// What the library page is about: the tracks of the computer and of the device, which of them are listed and in what
// order, and which are chosen.
//
// A plain part of the model, of the UI thread; whoever changes it tells the pages. Each side's tracks have an index off
// which all lists are read. It is worked out when a list is asked for and none is there: for many tracks that takes
// long, so that a job should prepare() it, and what it made is put in place by land(). Lists copy no track.
#pragma once

#include "library/Album.h"

#include "model/LibraryIndex.h"

#include <QSet>
#include <QUuid>

#include <memory>
#include <optional>
#include <vector>

/// Albums that one list shares with another: filtering and sorting copy no track.
using AlbumList = std::vector<std::shared_ptr<const Album>>;

/// How much is queued.
struct QueueSum {
    std::size_t count = 0;
    std::int64_t bytes = 0;
};

/// A side's tracks with all that was worked out of them. What it points to never changes: a job may hold it.
struct LibraryContents {
    std::shared_ptr<const std::vector<Track>> tracks = std::make_shared<std::vector<Track>>();
    std::shared_ptr<const LibraryIndex> index; ///< may be absent
    std::shared_ptr<const AlbumList> albums; ///< of the index, as they were grouped

    /// These tracks with `more`, which may be none, behind them, and their index. Albums that stay as they are stay the
    /// same records. Blocking: a second for 100,000 tracks, on two threads; any thread.
    [[nodiscard]] LibraryContents prepared(std::shared_ptr<const std::vector<Track>> more = {}) const;
};

/// Where tracks are.
enum class Side : std::uint8_t { Computer, Device };
inline constexpr std::array allSides {Side::Computer, Side::Device};

class Browsing {
public:
    // The tracks of both sides, and the side that is shown.
    [[nodiscard]] const std::vector<Track> &tracks(Side side) const { return *contents(side).tracks; }
    [[nodiscard]] const std::vector<Track> &activeTracks() const { return tracks(m_side); }
    [[nodiscard]] const LibraryContents &contents(Side side) const { return m_contents[place(side)]; }
    /// Puts `made`, prepared of `base`, in the place of the side's contents. Nothing, and false, where those have
    /// changed meanwhile, or the order of texts has.
    [[nodiscard]] bool land(Side side, const LibraryContents &base, const LibraryContents &made);
    /// Whether the side's lists are at hand, or short enough to be made at once.
    [[nodiscard]] bool isReady(Side side) const;
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
    [[nodiscard]] const QString &search() const { return m_filter.search; }
    bool setSearch(const QString &text);
    [[nodiscard]] const QString &formatFilter() const { return m_filter.format; }
    bool setFormatFilter(const QString &filter);
    [[nodiscard]] bool hiResOnly() const { return m_filter.hiResOnly; }
    bool setHiResOnly(bool only);
    [[nodiscard]] const QString &sortMode() const { return m_sortMode; }
    bool setSortMode(const QString &mode);
    [[nodiscard]] bool matches(const Track &track) const { return m_filter.passes(track); }

    /// All albums of a side, filtered out or not, as they were grouped.
    [[nodiscard]] const AlbumList &everyAlbum(Side side) const { return *indexed(side).albums; }
    /// The one of this identity.
    [[nodiscard]] std::shared_ptr<const Album> albumOf(Side side, const QString &albumId) const;

    // Lists of the side that is shown.
    /// What they are read off. The order of texts may have changed since it was made.
    [[nodiscard]] const std::shared_ptr<const LibraryIndex> &index() const
    {
        return contents(m_side).index ? contents(m_side).index : indexed(m_side).index;
    }
    [[nodiscard]] const AlbumList &everyAlbum() const { return everyAlbum(m_side); }
    /// Those with a track that matches, whole, in order.
    [[nodiscard]] std::shared_ptr<const AlbumList> albums() const;
    /// The album, filtered out or not, that holds a track of this id.
    [[nodiscard]] std::shared_ptr<const Album> albumWith(const QUuid &trackId) const;
    [[nodiscard]] std::shared_ptr<const TrackPlaces> filteredTracks() const;
    /// The number of filteredTracks().
    [[nodiscard]] std::size_t filteredTrackCount() const { return trackMatches()->count; }
    /// Which tracks match, by their places, how many, and whether there is high resolution among them.
    [[nodiscard]] std::shared_ptr<const TrackMatches> trackMatches() const;

    // What is chosen: queued on the computer's side, selected on the device's.
    [[nodiscard]] const QSet<QUuid> &chosen(Side side) const { return m_chosen[place(side)]; }
    /// The queued tracks in the library's order.
    [[nodiscard]] std::vector<Track> queue() const;
    [[nodiscard]] std::size_t queueCount() const { return queueSum().count; }
    [[nodiscard]] std::int64_t queueBytes() const { return queueSum().bytes; }
    void enqueue(const std::vector<Track> &tracks);
    /// Those of the ids that are the computer's tracks.
    void enqueue(const QSet<QUuid> &ids);
    void dequeue(const QSet<QUuid> &ids);
    void clearQueue();
    /// Adds the album to the side's set, or takes it out if all of it is there.
    void toggle(Side side, const Album &album);
    /// The same with tracks of that side.
    void toggle(Side side, const QSet<QUuid> &tracks);
    void toggleTrack(Side side, const Track &track);

private:
    /// What was read off an index; absent when something that it depends on has changed.
    struct Lists {
        std::shared_ptr<const LibraryIndex> index; ///< of which they are
        std::shared_ptr<const TrackMatches> matches;
        std::shared_ptr<const AlbumList> albums;
        std::shared_ptr<const TrackPlaces> tracks;
    };

    [[nodiscard]] static constexpr std::size_t place(Side side) { return side == Side::Device ? 1 : 0; }
    /// A setter's work: which tracks match follows from the field.
    template <typename Field> bool set(Field &field, const Field &value);
    /// The side's tracks, to be changed: a job that holds them keeps them as they were.
    [[nodiscard]] std::vector<Track> &ownTracks(Side side);
    /// The side's contents, with an index of the present language.
    [[nodiscard]] const LibraryContents &indexed(Side side) const;
    [[nodiscard]] Lists &lists() const;
    [[nodiscard]] const QueueSum &queueSum() const;

    mutable std::array<LibraryContents, 2> m_contents; ///< an index is made when it is first needed
    std::array<QSet<QUuid>, 2> m_chosen;
    Side m_side = Side::Computer;
    ListFilter m_filter;
    QString m_sortMode = sortModeText(SortMode::Artist);
    mutable Lists m_lists;
    mutable std::optional<QueueSum> m_queueSum;
};
