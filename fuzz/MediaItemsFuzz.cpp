// Any bytes as an audio file. The first byte chooses the extension, the rest is the file.
#include "media/files/MediaAsset.h"

#include "FuzzFile.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const std::array<FuzzFile, 14> files {FuzzFile(".mp3"), FuzzFile(".flac"), FuzzFile(".m4a"),
        FuzzFile(".aac"), FuzzFile(".ogg"), FuzzFile(".opus"), FuzzFile(".wav"), FuzzFile(".aiff"), FuzzFile(".aif"),
        FuzzFile(".alac"), FuzzFile(".ape"), FuzzFile(".wv"), FuzzFile(".mpc"), FuzzFile("")};
    if (size == 0) {
        return 0;
    }
    MediaAsset asset(files[data[0] % files.size()].write(data + 1, size - 1));
    const std::optional<double> seconds = asset.durationSeconds();
    require(!seconds || (*seconds > 0 && *seconds <= 100e6));
    const std::optional<AudioStream> stream = asset.firstAudioStream();
    require(!stream || (stream->sampleRate > 0 && stream->sampleRate <= 100e6));
    for (const MetadataItem &item : asset.metadata()) {
        require(item.text.has_value() != item.data.has_value());
        require(!item.data || (!item.data->isEmpty() && item.data->size() <= 10'000'000));
    }
    return 0;
}
