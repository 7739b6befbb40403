// The tags of a file opened by TagLib as the items of MediaAsset.
#pragma once

#include "media/files/BoundedStream.h"
#include "media/files/MediaFacts.h"

#include <tfile.h>

#include <vector>

/// The items in the order in which a later one takes the place of an earlier one: the tag that counts most comes
/// last (ID3v1, APE, ID3v2; RIFF's INFO before ID3v2), and all pictures come after the texts. An item with an empty
/// text is kept where its format tells it from none.
///
/// `stream` is the one that `file` was opened from. May throw std::bad_alloc or std::length_error on hostile bytes.
[[nodiscard]] std::vector<MetadataItem> tagItems(TagLib::File &file, BoundedStream &stream);
