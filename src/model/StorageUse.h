// What a device's disk holds, in the parts that its page shows. Pure.
#pragma once

#include "library/Track.h"

#include "storage/Device.h"

#include <cstdint>
#include <vector>

/// Bytes. The parts come from two readings of the disk, its music's and its own, which may be of different moments:
/// they never exceed the whole.
struct StorageUse {
    std::int64_t flac = 0;
    std::int64_t mp3 = 0;
    std::int64_t otherMusic = 0;
    std::int64_t otherData = 0; ///< all else that is in use
    std::int64_t free = 0;

    bool operator==(const StorageUse &) const = default;

    [[nodiscard]] static StorageUse of(const Device &device, const std::vector<Track> &music);
};
