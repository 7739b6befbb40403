// Groups tracks into albums: by disc folders, by folder and tags, and by disc numbers in sibling folders.
//
// The unit is what a person keeps on disk as one release. Letter case of tags and disc suffixes such as " (CD 2)" do
// not split an album. Pure functions of their arguments; any thread.
#pragma once

#include "library/Album.h"

namespace AlbumGrouping {

/// The grouping's view of one track. `key` is the identity of its album: a word for the kind of album, then a folder
/// and lower-cased names, joined by NUL, which no path contains.
struct Description {
    QString key;
    QString title; ///< as this track suggests it
    QString artist;
    std::int64_t disc = 1; ///< 1 or more for a plain folder

    bool operator==(const Description &) const = default;
};

/// One album as places in a list of tracks, for those who look at many tracks and keep few.
struct Group {
    QString artist;
    QString title;
    QString key;
    std::vector<std::size_t> tracks; ///< in the album's order; at least one
};

/// The groups behind albums(), without a copy of any track.
[[nodiscard]] std::vector<Group> groups(const std::vector<Track> &tracks);

/// The album that a group of these tracks is.
[[nodiscard]] Album album(const Group &group, const std::vector<Track> &tracks);

/// Albums in the order in which their first tracks come. Track ids must be unique.
[[nodiscard]] std::vector<Album> albums(const std::vector<Track> &tracks);

[[nodiscard]] Description describe(const Track &track);

/// The number of a disc folder such as "CD1", "Disc-3" or "Płyta 2"; 0 is a number too.
[[nodiscard]] std::optional<std::int64_t> folderDisc(const QString &name);

/// An album tag without its disc suffix and outer white space: "Album [Disc 2 of 3]" gives "Album".
[[nodiscard]] QString cleanedAlbum(const QString &album);

} // namespace AlbumGrouping
