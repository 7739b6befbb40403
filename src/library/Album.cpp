#include "library/Album.h"

#include "library/AlbumGrouping.h"

#include "media/pictures/Images.h"
#include "platform/files/Files.h"

#include <map>

QString Album::id() const
{
    if (groupID) {
        return *groupID;
    }
    const QString folder = tracks.empty() ? QString() : Files::text(tracks.front().url.parent_path());
    return artist + QChar(u'\0') + title + QChar(u'\0') + folder;
}

std::optional<QByteArray> Album::artworkBytes() const
{
    for (const Track &track : tracks) {
        if (track.artwork) {
            return track.artwork;
        }
    }
    return std::nullopt;
}

QImage Album::artwork(int side) const
{
    const std::optional<QByteArray> encoded = artworkBytes();
    return encoded ? decodeImage(*encoded, side) : QImage();
}

std::vector<AlbumDisc> Album::discs() const
{
    std::map<std::int64_t, AlbumDisc> byNumber;
    for (const Track &track : tracks) {
        const std::int64_t number = AlbumGrouping::describe(track).disc;
        AlbumDisc &disc = byNumber[number];
        disc.number = number;
        disc.tracks.push_back(track);
    }
    std::vector<AlbumDisc> result;
    result.reserve(byNumber.size());
    for (auto &[number, disc] : byNumber) {
        result.push_back(std::move(disc));
    }
    return result;
}

std::int64_t Album::bytes() const
{
    std::int64_t sum = 0;
    for (const Track &track : tracks) {
        sum += track.bytes;
    }
    return sum;
}
