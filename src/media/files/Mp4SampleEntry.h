// What the sample entry of an MP4 file's sound says, where that is more than its rate and name. ISO 14496-12, section
// 8.5.2 (the atom "stsd"), and 12.2.3; ISO 14496-14, section 3.1; ISO 14496-3, section 1.6. Pure; any thread.
#pragma once

#include "media/files/MediaAsset.h"

#include <QByteArrayView>

#include <optional>

/// `descriptions` is the content of an atom "stsd", of which the first entry counts. Absent for formats other than
/// MPEG-4 audio and FLAC, and where the entry does not hold what it should.
[[nodiscard]] std::optional<AudioStream> mp4EntryStream(QByteArrayView descriptions);
