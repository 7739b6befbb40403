// Sound of any length, without an encoder.
#pragma once

#include "support/FlacBytes.h"

/// A wave file of silence, 8000 Hz, 8 bits.
inline std::string wave(double seconds)
{
    const std::string samples(std::size_t(seconds * 8000), '\x80');
    using FlacBytes::little;
    return "RIFF" + little(std::uint32_t(36 + samples.size())) + "WAVEfmt " + little(16) + std::string("\1\0\1\0", 4)
        + little(8000) + little(8000) + std::string("\1\0\10\0", 4) + "data" + little(std::uint32_t(samples.size()))
        + samples;
}
