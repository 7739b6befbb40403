// Metadata blocks of FLAC, which Ogg and MP4 files hold too: stream information, Vorbis comments, pictures. RFC 9639,
// sections 8.2, 8.6 and 8.8. Blocks that do not fit together give what came before the misfit. Pure; any thread.
#pragma once

#include "platform/files/ByteCursor.h"

#include <QString>
#include <QUtf8StringView>

#include <cstdint>
#include <optional>

namespace FlacBlocks {

struct StreamInfo {
    std::uint32_t sampleRate = 0; ///< Hz
    std::uint32_t bitsPerSample = 0;
    std::uint64_t samples = 0; ///< of each channel; 0 if unknown
};

/// Absent unless the block has its one size.
[[nodiscard]] std::optional<StreamInfo> streamInfo(QByteArrayView block);

/// Where the encoded picture is in its block.
struct PicturePlace {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    bool isFrontCover = false;
    bool isLink = false; ///< the bytes are an address
};

/// `head` is the beginning of a block of `blockLength` bytes. Absent if the block's texts reach beyond `head`, or the
/// picture beyond the block.
[[nodiscard]] std::optional<PicturePlace> picturePlace(QByteArrayView head, std::uint64_t blockLength);

/// A U+FEFF at the beginning belongs to the text: UTF-8 needs no such mark.
[[nodiscard]] QString commentText(QByteArrayView utf8);

inline constexpr std::uint64_t maxComments = 9'999;

/// Calls `take(key, value)` for each comment in its order; the key has the writer's case. Left out: comments without
/// "=" or of bytes that are no UTF-8, and lists of more than maxComments.
template <typename Take> void forEachComment(QByteArrayView block, const Take &take)
{
    ByteCursor cursor(block, ByteOrder::Little);
    const std::optional<std::uint64_t> vendorLength = cursor.number(4);
    if (!vendorLength || !cursor.skip(*vendorLength)) {
        return;
    }
    const std::uint64_t count = cursor.number(4).value_or(0);
    for (std::uint64_t i = 0; i < count && count <= maxComments; ++i) {
        const std::optional<std::uint64_t> length = cursor.number(4);
        const std::optional<QByteArrayView> comment = length ? cursor.take(*length) : std::nullopt;
        if (!comment) {
            return;
        }
        const qsizetype equals = comment->indexOf('=');
        if (equals >= 0 && QUtf8StringView(*comment).isValidUtf8()) {
            take(comment->first(equals), comment->sliced(equals + 1));
        }
    }
}

} // namespace FlacBlocks
