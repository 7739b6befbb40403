#include "media/pictures/TiffDirectory.h"

#include "platform/files/ByteCursor.h"

namespace {

/// Bytes of one value of a field's type; 0 for the types that are no whole numbers.
std::size_t widthOf(std::uint64_t type)
{
    enum : std::uint8_t { Byte = 1, Short = 3, Long = 4 };
    return type == Byte ? 1 : type == Short ? 2 : type == Long ? 4 : 0;
}

std::optional<ByteCursor> cursorOn(QByteArrayView tiff)
{
    const bool isBig = tiff.startsWith("MM");
    ByteCursor cursor(tiff, isBig ? ByteOrder::Big : ByteOrder::Little);
    const bool isTiff = (cursor.skipText("MM") || cursor.skipText("II")) && cursor.number(2) == 42;
    return isTiff ? std::optional(cursor) : std::nullopt;
}

} // namespace

std::optional<std::uint32_t> tiffValue(QByteArrayView tiff, TiffTag tag)
{
    std::optional<ByteCursor> cursor = cursorOn(tiff);
    const std::optional<std::uint64_t> directory = cursor ? cursor->number(4) : std::nullopt;
    if (!directory) {
        return std::nullopt;
    }
    constexpr std::uint64_t entrySize = 12;
    ByteCursor entries = cursor->at(*directory);
    for (std::uint64_t left = entries.number(2).value_or(0); left > 0 && entries.remaining() >= entrySize; --left) {
        const bool isWanted = entries.number(2) == std::uint64_t(tag);
        const std::size_t width = widthOf(entries.number(2).value_or(0));
        const std::uint64_t count = entries.number(4).value_or(0);
        const std::uint64_t place = entries.position();
        const std::uint64_t elsewhere = entries.number(4).value_or(0);
        if (!isWanted) {
            continue;
        }
        if (width == 0 || count == 0) {
            break;
        }
        // Up to four bytes are in the entry itself.
        const auto value = cursor->at(count <= 4 / width ? place : elsewhere).number(width);
        return value ? std::optional(std::uint32_t(*value)) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<int> tiffOrientation(QByteArrayView tiff)
{
    const std::optional<std::uint32_t> value = tiffValue(tiff, TiffTag::Orientation);
    return value && *value >= 1 && *value <= 8 ? std::optional(int(*value)) : std::nullopt;
}
