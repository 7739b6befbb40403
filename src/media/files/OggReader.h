// Ogg Vorbis and Ogg Opus: the facts of the sound and the comments.
//
// TagLib reads these too, but copies a picture many times on its way out of pages and base64; this takes a third of
// the time and bounds what hostile comments cost. Sources: RFC 3533 (Ogg), Vorbis I, sections 4.2 and
// 5, RFC 7845 (Opus in Ogg), RFC 4648 (base64); comments and pictures: FlacBlocks.h.
//
// A comment header over 16 MiB is cut. May throw std::bad_alloc. No state.
#pragma once

#include "media/files/AudioContent.h"
#include "media/files/MediaFacts.h"

#include <vector>

namespace OggReader {

/// For content of kind OggVorbis or OggOpus. No length if the stream that begins the file does not also end it.
[[nodiscard]] MediaFacts facts(BoundedStream &stream, const AudioContent &content);

[[nodiscard]] std::vector<MetadataItem> items(const RegularFile &file, const AudioContent &content);

} // namespace OggReader
