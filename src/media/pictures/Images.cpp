#include "media/pictures/Images.h"

#include "media/pictures/Jpeg.h"
#include "media/pictures/PictureChunks.h"
#include "media/pictures/TiffDirectory.h"
#include "platform/files/ByteCursor.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QRgba64>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

/// For the formats that are decoded whole: 256 MB at 32 bits a pixel.
constexpr qint64 maxWholePixels = 64 << 20;
constexpr int maxWholeMegabytes = 256;

/// The name of a picture's format by its first bytes, null if it is none of ours. Others are not tried: Qt would take
/// vector formats too, which may name further files.
const char *formatOf(QByteArrayView bytes)
{
    using namespace std::string_view_literals;
    struct Mark {
        qsizetype position;
        std::string_view bytes;
        const char *format;
    };
    constexpr std::array<Mark, 7> marks {Mark {0, "\xFF\xD8\xFF"sv, "jpeg"}, Mark {0, "\x89PNG\r\n\x1A\n"sv, "png"},
        Mark {0, "BM"sv, "bmp"}, Mark {0, "GIF8"sv, "gif"}, Mark {8, "WEBP"sv, "webp"}, Mark {0, "II*\0"sv, "tiff"},
        Mark {0, "MM\0*"sv, "tiff"}};
    for (const Mark &mark : marks) {
        if (bytes.size() > mark.position && bytes.sliced(mark.position).startsWith(mark.bytes)) {
            return mark.format;
        }
    }
    return nullptr;
}

bool isJpeg(const char *format)
{
    return format == std::string_view("jpeg");
}

/// A null image where Qt does not know the format before it reads, or where it would be too large.
QImage prepared(QSize size, QImage::Format format)
{
    const qint64 bitsPerPixel = QImage::toPixelFormat(format).bitsPerPixel();
    if (format == QImage::Format_Invalid
        || qint64(size.width()) * size.height() * bitsPerPixel / 8 > qint64(maxWholeMegabytes) << 20) {
        return {};
    }
    QImage image(size, format);
    if (image.depth() > 8) {
        image.fill(Qt::white);
    } else {
        image.fill(0);
    }
    return image;
}

/// The reader of a picture in memory, of the format that its first bytes say and no other.
class Reader {
public:
    Reader(const QByteArray &bytes, const char *format)
        : m_bytes(bytes)
        , m_buffer(&m_bytes)
    {
        static const bool isLimited = (QImageReader::setAllocationLimit(maxWholeMegabytes), true);
        Q_UNUSED(isLimited)
        m_buffer.open(QIODevice::ReadOnly);
        m_reader.setAutoDetectImageFormat(false);
        m_reader.setFormat(format);
        m_reader.setDevice(&m_buffer);
    }

    /// A bitmap whose rows go from the top to the bottom declares a negative height.
    [[nodiscard]] QSize size() const
    {
        const QSize declared = m_reader.size();
        return declared == QSize() ? declared : QSize(declared.width(), std::abs(declared.height()));
    }
    /// Null if the picture cannot be read or takes too much memory.
    [[nodiscard]] QImage read()
    {
        // Some of Qt's readers report success without having set every pixel, as where the bytes end too early. What
        // they leave is white, or the first of the picture's own colours, and not what the memory held before.
        QImage image = prepared(size(), m_reader.imageFormat());
        return m_reader.read(&image) ? image : QImage();
    }

private:
    QByteArray m_bytes;
    QBuffer m_buffer;
    QImageReader m_reader;
};

/// Exif's numbers 1 to 8 (Exif 2.32, section 4.6.4) as what has to be done, in the order mirror, flip, turn.
QImageIOHandler::Transformations transformationOf(int orientation)
{
    using Handler = QImageIOHandler;
    constexpr std::array<Handler::Transformation, 9> all {Handler::TransformationNone, Handler::TransformationNone,
        Handler::TransformationMirror, Handler::TransformationRotate180, Handler::TransformationFlip,
        Handler::TransformationFlipAndRotate90, Handler::TransformationRotate90,
        Handler::TransformationMirrorAndRotate90, Handler::TransformationRotate270};
    return all.at(std::size_t(orientation));
}

/// What the Exif data of a picture says, 1 if it says nothing. Qt reports it of few formats.
int orientationOf(QByteArrayView bytes, std::string_view format)
{
    if (format == "tiff") {
        return tiffOrientation(bytes).value_or(1);
    }
    const std::optional<QByteArrayView> exif = format == "png" ? pngChunk(bytes, "eXIf")
        : format == "webp"                                     ? webpChunk(bytes, "EXIF")
                                                               : std::nullopt;
    if (!exif) {
        return 1;
    }
    constexpr QByteArrayView jpegMark("Exif\0\0", 6); // does not belong here, but some programs leave it
    const QByteArrayView tiff = exif->startsWith(jpegMark) ? exif->sliced(jpegMark.size()) : *exif;
    return tiffOrientation(tiff).value_or(1);
}

QImage turned(const QImage &image, QImageIOHandler::Transformations transformation)
{
    const QImage mirrored = image.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
        transformation.testFlag(QImageIOHandler::TransformationFlip));
    return transformation.testFlag(QImageIOHandler::TransformationRotate90)
        ? mirrored.transformed(QTransform().rotate(90))
        : mirrored;
}

/// Of a TIFF picture with samples of more than eight bits Qt takes most rows as they are in the file: what is no row of
/// whole pixels it misreads, and reports success.
bool isMisreadTiff(QByteArrayView tiff)
{
    constexpr std::uint32_t rgb = 2;
    constexpr std::uint32_t separate = 2;
    if (tiffValue(tiff, TiffTag::BitsPerSample).value_or(1) <= 8) {
        return false;
    }
    const std::uint32_t samples = tiffValue(tiff, TiffTag::SamplesPerPixel).value_or(1);
    return samples == 1 ? tiffValue(tiff, TiffTag::Photometric) == rgb
                        : samples != 2 && tiffValue(tiff, TiffTag::Planes) == separate;
}

/// Whether a PNG picture has red, green and blue of 16 bits, and no opacity.
bool isDeepColour(QByteArrayView png)
{
    constexpr std::uint64_t colour = 2;
    ByteCursor format(pngChunk(png, "IHDR").value_or(QByteArrayView()), ByteOrder::Big);
    return format.skip(8) && format.number(1) == 16U && format.number(1) == colour; // width and height come first
}

QRgba64 colourOf(QByteArrayView tRns)
{
    ByteCursor samples(tRns, ByteOrder::Big);
    std::array<quint16, 3> colour {};
    for (quint16 &sample : colour) {
        sample = quint16(samples.number(2).value_or(0));
    }
    return QRgba64::fromRgba64(colour[0], colour[1], colour[2], 0xFFFF);
}

/// Takes the transparent colour out of a PNG picture that has 16 bits a sample and no other transparency: Qt, which
/// then expects four samples a pixel and gets three, would put them into the wrong pixels. A decoder heeds the first
/// such colour, and none behind the first pixels.
std::optional<QRgba64> takeTransparentColour(QByteArray &png)
{
    if (!isDeepColour(png)) {
        return std::nullopt;
    }
    std::optional<QRgba64> transparent;
    ByteCursor cursor = pngChunks(png);
    QByteArray kept = png.first(qsizetype(cursor.position()));
    while (const std::optional<PngChunk> chunk = takePngChunk(cursor)) {
        if (chunk->type != "tRNS") {
            kept.append(chunk->whole);
        } else if (!transparent) {
            transparent = colourOf(chunk->content);
        }
        if (chunk->type == "IDAT") {
            break;
        }
    }
    if (transparent) {
        png = kept.append(cursor.take(cursor.remaining()).value_or(QByteArrayView()));
    }
    return transparent;
}

void makeTransparent(QImage &image, QRgba64 colour)
{
    image.convertTo(QImage::Format_RGBA64);
    for (int y = 0; y < image.height(); ++y) {
        auto *const line = reinterpret_cast<QRgba64 *>(image.scanLine(y));
        std::replace(line, line + image.width(), colour, QRgba64());
    }
}

/// Null where the picture cannot be read or is too large. All formats but JPEG.
QImage decodeWhole(QByteArray bytes, const char *format)
{
    const std::string_view name = format;
    const std::optional<QRgba64> transparent = name == "png" ? takeTransparentColour(bytes) : std::nullopt;
    Reader reader(bytes, format);
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > maxWholePixels
        || (name == "tiff" && isMisreadTiff(bytes))) {
        return {};
    }
    QImage image = reader.read();
    if (transparent) {
        makeTransparent(image, *transparent);
    }
    return image;
}

/// Takes the image over, so that a large one is converted where it is.
QImage fitted(QImage &&image, int side)
{
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.width() <= side && image.height() <= side) {
        return std::move(image);
    }
    return image.scaled(image.size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}), Qt::IgnoreAspectRatio,
        Qt::SmoothTransformation);
}

} // namespace

std::optional<ImageFacts> imageFacts(const QByteArray &bytes)
{
    const char *format = formatOf(bytes);
    if (format == nullptr) {
        return std::nullopt;
    }
    if (isJpeg(format)) {
        const std::optional<JpegHeader> header = readJpegHeader(bytes);
        return header ? std::optional(ImageFacts {ImageFacts::Type::Jpeg, header->width, header->height,
                            header->progressive && header->jfif, QString::fromLatin1(format).toUpper()})
                      : std::nullopt;
    }
    const QSize size = Reader(bytes, format).size();
    if (size.isEmpty()) {
        return std::nullopt;
    }
    const bool isBitmap = format == std::string_view("bmp");
    return ImageFacts {isBitmap ? ImageFacts::Type::Bmp : ImageFacts::Type::Other, size.width(), size.height(), false,
        QString::fromLatin1(format).toUpper()};
}

QImage decodeImage(const QByteArray &bytes, int side)
{
    const char *format = formatOf(bytes);
    QImage image;
    int orientation = 1;
    if (format == nullptr) {
        return {};
    }
    if (isJpeg(format)) {
        JpegPicture picture = decodeJpeg(bytes, side);
        image = fitted(std::move(picture.image), side);
        orientation = picture.orientation;
    } else {
        image = fitted(decodeWhole(bytes, format), side);
        orientation = orientationOf(bytes, format);
    }
    if (image.colorSpace().isValid()) {
        image.convertToColorSpace(QColorSpace::SRgb);
    }
    return turned(image, transformationOf(orientation));
}

QImage onWhiteSquare(const QImage &picture, int side)
{
    QImage square(side, side, QImage::Format_RGB32);
    square.fill(Qt::white);
    const QSize size = picture.size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
    QPainter painter;
    if (!painter.begin(&square)) {
        return {};
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRect(QPoint((side - size.width()) / 2, (side - size.height()) / 2), size), picture);
    painter.end();
    return square;
}

std::optional<QByteArray> encodeJpeg(const QImage &image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    if (!writer.canWrite()) {
        return std::nullopt;
    }
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(false);
    return writer.write(image) ? bytes : QByteArray();
}
