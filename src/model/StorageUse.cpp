#include "model/StorageUse.h"

#include "model/BrowsingWords.h"

#include <algorithm>

StorageUse StorageUse::of(const Device &device, const std::vector<Track> &music)
{
    StorageUse use;
    use.free = std::clamp<std::int64_t>(device.available, 0, std::max<std::int64_t>(device.total, 0));
    use.otherData = std::max<std::int64_t>(device.total, 0) - use.free;
    const QString flac = formatFilterText(FormatFilter::Flac);
    const QString mp3 = formatFilterText(FormatFilter::Mp3);
    for (const Track &track : music) {
        std::int64_t &part = track.info.codec == flac ? use.flac : track.info.codec == mp3 ? use.mp3 : use.otherMusic;
        const std::int64_t bytes = std::clamp<std::int64_t>(track.bytes, 0, use.otherData);
        part += bytes;
        use.otherData -= bytes;
    }
    return use;
}
