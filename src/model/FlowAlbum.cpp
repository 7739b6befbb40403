#include "model/FlowAlbum.h"

#include "library/AlbumGrouping.h"

#include "platform/text/TextOrder.h"

#include <algorithm>

std::vector<FlowAlbum> FlowAlbum::prepare(const std::vector<Track> &tracks)
{
    std::vector<Album> albums = AlbumGrouping::albums(tracks);
    std::sort(albums.begin(), albums.end(), [](const Album &a, const Album &b) { return a.id() < b.id(); });
    TextOrder::stableSort(albums, [](const Album &album) { return album.artist + album.title; });
    std::vector<FlowAlbum> items;
    items.reserve(albums.size());
    for (Album &album : albums) {
        QByteArray artwork = album.artworkBytes().value_or(QByteArray());
        const int discCount = int(album.discs().size());
        items.push_back({.album = std::move(album), .artwork = std::move(artwork), .discCount = discCount});
    }
    return items;
}
