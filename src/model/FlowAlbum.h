// The albums of the carousel. Pure; any thread.
#pragma once

#include "library/Album.h"

/// One place of the carousel; its identity is that of its album.
struct FlowAlbum {
    Album album;
    QByteArray artwork; ///< the encoded cover; empty without one
    int discCount = 0;

    /// The albums that these tracks make, by artist and title as a file manager would order them.
    [[nodiscard]] static std::vector<FlowAlbum> prepare(const std::vector<Track> &tracks);
};
