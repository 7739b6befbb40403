// What libavformat knows of an audio file: for the files that TagLib has no answer for.
//
// The file alone is read, through its open descriptor: no other file, no network, whatever the bytes ask for.
// Only the containers of audio files are tried, only audio decoders are started, no more than 16 MiB are read, and
// from the first call on libav's largest allocation in this process is 128 MiB.
// Never throws; blocking; any thread.
#pragma once

#include "media/files/MediaFacts.h"
#include "platform/files/RegularFile.h"

#include <vector>

namespace StreamProbe {

struct Answer {
    MediaFacts facts;
    std::vector<MetadataItem> items;
};

/// `start` is where the audio file begins behind ID3v2 tags; `container` is libavformat's name of its format, null to
/// find out from the bytes.
[[nodiscard]] Answer probe(const RegularFile &file, std::int64_t start, const char *container);

} // namespace StreamProbe
