// The chunks that PNG and WebP pictures are made of. Pure; any thread; never throws; nothing is copied.
#pragma once

#include "platform/files/ByteCursor.h"

/// The content of the first chunk of this type of four letters, wherever it is; absent if there is none, or it is cut.
[[nodiscard]] std::optional<QByteArrayView> pngChunk(QByteArrayView png, QByteArrayView type);
[[nodiscard]] std::optional<QByteArrayView> webpChunk(QByteArrayView webp, QByteArrayView type);

struct PngChunk {
    QByteArrayView type;
    QByteArrayView content;
    QByteArrayView whole; ///< the content with its frame
};

/// A cursor at the first chunk.
[[nodiscard]] ByteCursor pngChunks(QByteArrayView png);
/// The chunk at `cursor`, which is then behind it; absent, with the cursor where it was, if it is cut.
[[nodiscard]] std::optional<PngChunk> takePngChunk(ByteCursor &cursor);
