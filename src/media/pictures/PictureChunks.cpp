#include "media/pictures/PictureChunks.h"

ByteCursor pngChunks(QByteArrayView png)
{
    constexpr std::uint64_t signatureSize = 8;
    ByteCursor cursor(png, ByteOrder::Big);
    cursor.skip(signatureSize);
    return cursor;
}

// PNG, section 5.3: length, type, content, checksum.
std::optional<PngChunk> takePngChunk(ByteCursor &cursor)
{
    constexpr std::uint64_t checksumSize = 4;
    ByteCursor ahead = cursor;
    const std::optional<std::uint64_t> length = ahead.number(4);
    const std::optional<QByteArrayView> type = ahead.take(4);
    const std::optional<QByteArrayView> content = length && type ? ahead.take(*length) : std::nullopt;
    if (!content || !ahead.skip(checksumSize)) {
        return std::nullopt;
    }
    return PngChunk {*type, *content, cursor.take(ahead.position() - cursor.position()).value_or(QByteArrayView())};
}

std::optional<QByteArrayView> pngChunk(QByteArrayView png, QByteArrayView type)
{
    ByteCursor cursor = pngChunks(png);
    while (const std::optional<PngChunk> chunk = takePngChunk(cursor)) {
        if (chunk->type == type) {
            return chunk->content;
        }
    }
    return std::nullopt;
}

// RIFF: type, length, content, and a byte more where the length is odd.
std::optional<QByteArrayView> webpChunk(QByteArrayView webp, QByteArrayView type)
{
    constexpr std::uint64_t fileHeaderSize = 12;
    ByteCursor cursor(webp, ByteOrder::Little);
    cursor.skip(fileHeaderSize);
    while (cursor.remaining() > 0) {
        const bool isWanted = cursor.skipText(type);
        const bool isFramed = isWanted || cursor.skip(4);
        const std::optional<std::uint64_t> length = cursor.number(4);
        const std::optional<QByteArrayView> content = length && isFramed ? cursor.take(*length) : std::nullopt;
        if (!content) {
            break;
        }
        cursor.skip(*length % 2);
        if (isWanted) {
            return content;
        }
    }
    return std::nullopt;
}
