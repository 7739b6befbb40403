#include "media/files/FlacBlocks.h"

#include <QStringDecoder>

namespace FlacBlocks {

std::optional<StreamInfo> streamInfo(QByteArrayView block)
{
    constexpr qsizetype size = 34;
    constexpr std::uint64_t frameSizes = 10;
    ByteCursor cursor(block, ByteOrder::Big);
    const bool isWhole = block.size() == size && cursor.skip(frameSizes);
    const std::optional<std::uint64_t> packed = isWhole ? cursor.number(8) : std::nullopt;
    if (!packed) {
        return std::nullopt;
    }
    // 20 bits of rate, 3 of channels, 5 of depth less one, and 36 of length.
    return StreamInfo {std::uint32_t(*packed >> 44), std::uint32_t(*packed >> 36 & 0x1F) + 1, *packed & 0xF'FFFF'FFFF};
}

std::optional<PicturePlace> picturePlace(QByteArrayView head, std::uint64_t blockLength)
{
    constexpr std::uint64_t frontCover = 3; // table 13
    constexpr std::uint64_t sizeAndColours = 16;
    ByteCursor cursor(head, ByteOrder::Big);
    const std::optional<std::uint64_t> type = cursor.number(4);
    const std::optional<std::uint64_t> mimeLength = cursor.number(4);
    const std::optional<QByteArrayView> mimeType = mimeLength ? cursor.take(*mimeLength) : std::nullopt;
    const std::optional<std::uint64_t> descriptionLength = mimeType ? cursor.number(4) : std::nullopt;
    if (!descriptionLength || !cursor.skip(*descriptionLength) || !cursor.skip(sizeAndColours)) {
        return std::nullopt;
    }
    const std::optional<std::uint64_t> length = cursor.number(4);
    if (!length || cursor.position() > blockLength || *length > blockLength - cursor.position()) {
        return std::nullopt;
    }
    return PicturePlace {cursor.position(), *length, type == frontCover, *mimeType == "-->"};
}

QString commentText(QByteArrayView utf8)
{
    if (!utf8.startsWith("\xEF\xBB\xBF")) {
        return QString::fromUtf8(utf8); // takes less time to set up
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(utf8);
}

} // namespace FlacBlocks
