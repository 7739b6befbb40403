// Tracks that belong together, as AlbumGrouping finds them.
#pragma once

#include "library/Track.h"

#include <QImage>

#include <vector>

/// One disc of an album; its identity is `number`.
struct AlbumDisc {
    std::int64_t number = 1;
    std::vector<Track> tracks;

    bool operator==(const AlbumDisc &) const = default;
};

struct Album {
    QString artist;
    QString title;
    std::vector<Track> tracks; ///< in the grouping's order
    std::optional<QString> groupID; ///< the grouping's key: where present, the album's identity

    bool operator==(const Album &) const = default;

    /// groupID, otherwise artist, NUL, title, NUL, folder of the first track (empty without tracks).
    [[nodiscard]] QString id() const;
    /// The first artwork bytes among the tracks; later tracks are not asked even if these are no picture.
    [[nodiscard]] std::optional<QByteArray> artworkBytes() const;
    /// Those bytes as a picture within `side` by `side` pixels; null where there are none or they do not decode.
    [[nodiscard]] QImage artwork(int side) const;
    /// The tracks by disc, ascending, each in the album's order.
    [[nodiscard]] std::vector<AlbumDisc> discs() const;
    /// Sum of the tracks' sizes.
    [[nodiscard]] std::int64_t bytes() const;
};
