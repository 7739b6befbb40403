// The frames of MPEG audio and raw AAC (ADTS): where the length of a file is written nowhere, it is counted from these.
//
// MPEG audio: ISO 11172-3, section 2.4, and ISO 13818-3; ADTS: ISO 14496-3, section 1.A.2. Blocking, never throws.
#pragma once

#include "platform/files/RegularFile.h"

#include <cstdint>
#include <optional>
#include <span>

namespace AudioFrames {

enum class Kind : std::uint8_t { Mpeg, Adts };

/// What the header of one frame says.
struct Frame {
    std::uint32_t bytes = 0;
    std::uint32_t samples = 0; ///< per channel
    std::uint32_t sampleRate = 0; ///< Hz
    std::uint32_t bitRate = 0; ///< kbit/s; 0 for ADTS

    bool operator==(const Frame &) const = default;
};

inline constexpr std::size_t headerSize = 7;

/// The frame whose header is at the start of `bytes`; absent if there is none or fewer than headerSize bytes are left.
[[nodiscard]] std::optional<Frame> frameAt(Kind kind, std::span<const char> bytes);

/// Whether a frame is found in the megabyte from `position` on.
[[nodiscard]] bool isAnyNear(const RegularFile &file, Kind kind, std::int64_t position);

/// The length in seconds of all frames from `position` on. Past 64 MiB the rest counts as being like the part read.
/// Absent if no frame is found near `position`.
[[nodiscard]] std::optional<double> seconds(const RegularFile &file, Kind kind, std::int64_t position);

/// Whether MPEG audio from `position` on changes its bit rate, judged by short runs at its beginning and in its middle.
[[nodiscard]] bool hasVariableBitRate(const RegularFile &file, std::int64_t position);

} // namespace AudioFrames
