// Tells from a file's first bytes what it holds, because an extension may lie.
#pragma once

#include "media/files/BoundedStream.h"

#include <cstdint>
#include <string_view>

struct AudioContent {
    enum class Kind : std::uint8_t {
        Unknown,
        Mpeg, ///< MPEG audio, layers I to III
        Adts, ///< raw AAC
        Id3v2, ///< tags with nothing known behind them
        Mp4,
        Flac,
        OggVorbis,
        OggOpus,
        OggFlac,
        OggSpeex,
        Wave,
        Aiff,
        Ape,
        WavPack,
        Musepack,
    };

    Kind kind = Kind::Unknown;
    std::int64_t start = 0; ///< the position behind the ID3v2 tags that open the file
};

/// `extension` has its dot; it decides only where the bytes do not. Of MPEG audio and raw AAC a frame must be found
/// in the first megabyte behind the tags.
[[nodiscard]] AudioContent audioContent(BoundedStream &stream, std::string_view extension);
