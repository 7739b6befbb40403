// Encoded pictures to pixels and back: JPEG, PNG, BMP, GIF, WebP and TIFF. No state; any thread; nothing throws.
//
// Memory is bounded, whatever the bytes declare: a JPEG picture is reduced while it is decoded (see Jpeg.h); one of
// another format is held whole, and is refused beyond 64 megapixels or 256 MB.
#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

/// What the first bytes of a picture say.
struct ImageFacts {
    enum class Type { Jpeg, Bmp, Other };

    Type type = Type::Other;
    int width = 0; ///< pixels, before any turning
    int height = 0;
    bool progressive = false; ///< the flag of a JFIF picture; a JPEG without a JFIF marker has none
    QString format = {}; ///< "JPEG", "PNG", ...
};

/// Absent if the bytes are no picture. Decodes no pixels.
[[nodiscard]] std::optional<ImageFacts> imageFacts(const QByteArray &bytes);

/// Decodes a picture so that it fits into a square of `side` pixels, its orientation applied, in sRGB; smaller ones are
/// not enlarged. Null where the bytes are no picture or declare a size that is not to be trusted.
[[nodiscard]] QImage decodeImage(const QByteArray &bytes, int side);

/// The whole picture in the middle of a white square of `side` pixels, enlarged or reduced to fit. Null if it cannot be
/// painted.
[[nodiscard]] QImage onWhiteSquare(const QImage &picture, int side);

/// A baseline JFIF picture; `quality` goes from 0 to 100. Absent if there is no encoder, empty if it fails.
[[nodiscard]] std::optional<QByteArray> encodeJpeg(const QImage &image, int quality);
