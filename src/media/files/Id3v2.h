// The fields of an ID3v2 tag (versions 2.2 to 2.4) that the program uses.
//
// Only headers and texts are read here; a picture stays in the file until it is asked for, unless the tag stores it
// coded. Compressed and encrypted frames are left out; so are texts over 8 KiB and what comes after 5,000 frames.
// Sources: id3.org's ID3v2.2.0, 2.3.0 and 2.4.0 (structure and frames).
#pragma once

#include "media/files/BoundedStream.h"
#include "media/files/MediaFacts.h"

#include <vector>

namespace Id3v2 {

struct Content {
    std::vector<MetadataItem> texts; ///< in the file's order
    std::vector<Picture> pictures;
};

/// May throw std::bad_alloc.
[[nodiscard]] Content read(BoundedStream &stream, const Id3v2Body &body);

} // namespace Id3v2
