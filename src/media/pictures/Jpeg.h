// JPEG pictures: what the header says, and the pixels at about the size they are needed in.
//
// Reading is bounded, whatever the bytes declare: the header costs some kilobytes, and the pixels less than 400 MB
// beside the image that comes out, since they are reduced while they are decoded. Damaged pictures come out as far as
// they go. No state; any thread; failures are an absent value or a null image, and nothing is printed.
#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

struct JpegHeader {
    int width = 0; ///< pixels, before any turning
    int height = 0;
    bool progressive = false;
    bool jfif = false; ///< a JFIF marker is in front of the picture (ITU-T T.871, section 10.1)
};

/// Absent if the bytes do not lead up to the first scan of a JPEG picture. Decodes no pixels.
[[nodiscard]] std::optional<JpegHeader> readJpegHeader(const QByteArray &bytes);

struct JpegPicture {
    QImage image; ///< 32 bits a pixel, opaque; it has the colour space of an embedded profile
    int orientation = 1; ///< Exif's, 1 to 8: how the image has yet to be turned
};

/// The picture reduced to a half, a quarter or an eighth, as long as its longer side keeps `side` pixels. A null image
/// if the header cannot be read, beyond 200 megapixels, and for a picture in several scans (a progressive one) beyond
/// 195 million samples: 130 megapixels with the usual coarser colours, 65 with full ones.
[[nodiscard]] JpegPicture decodeJpeg(const QByteArray &bytes, int side);
