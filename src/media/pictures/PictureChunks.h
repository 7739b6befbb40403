// The chunks that PNG and WebP pictures are made of. Pure; any thread; never throws; nothing is copied.
#pragma once

#include <QByteArrayView>

#include <optional>

struct PictureChunk {
    QByteArrayView content;
    qsizetype begin = 0; ///< in the picture, of the chunk with its frame
    qsizetype end = 0;
};

/// The first chunk of this type of four letters, wherever it is; absent if there is none, or it is cut.
[[nodiscard]] std::optional<PictureChunk> pngChunk(QByteArrayView png, QByteArrayView type);
[[nodiscard]] std::optional<PictureChunk> webpChunk(QByteArrayView webp, QByteArrayView type);
