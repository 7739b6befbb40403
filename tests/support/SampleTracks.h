// Tracks made in memory, for tests that need no files.
#pragma once

#include "Names.h"

#include "library/Track.h"

#include <vector>

struct TrackText {
    const char *path;
    const char *album = "Album";
    const char *artist = "Band";
    int disc = 0;
    int number = 0;
};

inline Track makeTrack(const TrackText &text)
{
    Track track;
    track.id = QUuid::createUuid();
    track.url = fs::path("/music") / text.path;
    track.title = QString::fromStdString(track.url.stem().string());
    track.album = QString::fromUtf8(text.album);
    track.artist = QString::fromUtf8(text.artist);
    track.info.discNumber = text.disc;
    track.info.trackNumber = text.number;
    return track;
}

inline std::vector<Track> makeTracks(const std::vector<TrackText> &texts)
{
    std::vector<Track> tracks;
    for (const TrackText &text : texts) {
        tracks.push_back(makeTrack(text));
    }
    return tracks;
}
