// The first directory of a TIFF structure, which is what Exif data is as well: how a picture has to be turned, and how
// its samples are arranged. TIFF 6.0, section 2; Exif 2.32, section 4.6.2. Pure; any thread; never throws.
#pragma once

#include <QByteArrayView>

#include <cstdint>
#include <optional>

enum class TiffTag : std::uint16_t {
    BitsPerSample = 258,
    Photometric = 262,
    Orientation = 274,
    SamplesPerPixel = 277,
    Planes = 284,
};

/// The first value of a tag; absent if it has none that is a whole number, or the bytes are no such structure.
[[nodiscard]] std::optional<std::uint32_t> tiffValue(QByteArrayView tiff, TiffTag tag);

/// Absent if the structure says nothing of it; otherwise 1 to 8.
[[nodiscard]] std::optional<int> tiffOrientation(QByteArrayView tiff);
