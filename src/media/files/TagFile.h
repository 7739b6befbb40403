// An audio file opened by TagLib, and what TagLib knows of its sound. Its tags: TagItems.h.
//
// May throw std::bad_alloc or std::length_error on hostile bytes; the caller ends that. No state between calls.
#pragma once

#include "media/files/AudioContent.h"
#include "media/files/MediaFacts.h"

#include <tfile.h>

#include <memory>

namespace TagFile {

/// Null where TagLib has no reader for the content, finds no such file in the bytes, or is not asked (OggReader.h). The
/// stream must outlive it.
[[nodiscard]] std::unique_ptr<TagLib::File> open(BoundedStream &stream, AudioContent::Kind kind);

/// No stream where TagLib does not know its sample rate; length 0 where it does not know that. `stream` is the one that
/// `file` was opened from.
[[nodiscard]] MediaFacts facts(const TagLib::File &file, BoundedStream &stream);

/// Whether the length is a guess from the first frame's bit rate.
[[nodiscard]] bool isLengthGuessed(const TagLib::File &file);

} // namespace TagFile
