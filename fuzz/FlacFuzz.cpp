// The FLAC reader on arbitrary bytes: it answers or refuses, and keeps its promises on what it answers.
#include "audio/AudioInfo.h"

#include "FuzzFile.h"

#include "platform/MarluneError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static FuzzFile file(".flac");
    try {
        const AudioInfo info = AudioInfo::readFLAC(file.write(data, size));
        require(info.codec == QStringLiteral("FLAC"));
        require(info.sampleRate >= 0 && info.bitDepth >= 0 && info.duration >= 0);
        require(info.trackNumber >= 0 && info.discNumber >= 0 && info.bitrate == 0);
        require(!info.picture || std::size_t(info.picture->size()) <= size);
        require(std::size_t(info.tags.size()) <= size);
        (void)info.parameters();
        (void)durationLabel(info.duration);
    } catch (const MarluneError &) { // no FLAC, or its blocks do not fit together
    }
    return 0;
}
