// A library of many tracks that has no files.
#pragma once

#include "library/TrackReader.h"

namespace Bench {

inline constexpr int manyTracks = 100'000;

/// As many tracks as asked for, twelve an album, with Polish and English names and some discs.
[[nodiscard]] std::vector<Track> makeTracks(int count);

/// "Reads" many tracks, whatever is to be imported.
[[nodiscard]] TracksRead readManyTracks(
    TrackImport import, const ImportProgress &progress, const std::stop_token &stop);

/// The names of many tracks, and what sorting them by keys that are ready takes: seconds.
[[nodiscard]] double secondsToSortByKeys();

} // namespace Bench
