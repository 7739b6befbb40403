#include "media/pictures/PictureChunks.h"

#include "platform/files/ByteCursor.h"

// PNG, section 5.3: length, type, content, checksum.
std::optional<PictureChunk> pngChunk(QByteArrayView png, QByteArrayView type)
{
    constexpr std::uint64_t signatureSize = 8;
    constexpr std::uint64_t checksumSize = 4;
    ByteCursor cursor(png, ByteOrder::Big);
    cursor.skip(signatureSize);
    while (cursor.remaining() > 0) {
        const auto begin = qsizetype(cursor.position());
        const std::optional<std::uint64_t> length = cursor.number(4);
        const bool isWanted = cursor.skipText(type);
        const bool isFramed = isWanted || cursor.skip(4);
        const std::optional<QByteArrayView> content = length && isFramed ? cursor.take(*length) : std::nullopt;
        if (!content || !cursor.skip(checksumSize)) {
            break;
        }
        if (isWanted) {
            return PictureChunk {*content, begin, qsizetype(cursor.position())};
        }
    }
    return std::nullopt;
}

// RIFF: type, length, content, and a byte more where the length is odd.
std::optional<PictureChunk> webpChunk(QByteArrayView webp, QByteArrayView type)
{
    constexpr std::uint64_t fileHeaderSize = 12;
    ByteCursor cursor(webp, ByteOrder::Little);
    cursor.skip(fileHeaderSize);
    while (cursor.remaining() > 0) {
        const auto begin = qsizetype(cursor.position());
        const bool isWanted = cursor.skipText(type);
        const bool isFramed = isWanted || cursor.skip(4);
        const std::optional<std::uint64_t> length = cursor.number(4);
        const std::optional<QByteArrayView> content = length && isFramed ? cursor.take(*length) : std::nullopt;
        if (!content) {
            break;
        }
        cursor.skip(*length % 2);
        if (isWanted) {
            return PictureChunk {*content, begin, qsizetype(cursor.position())};
        }
    }
    return std::nullopt;
}
