#include "platform/Images.h"

#include "platform/Jpeg.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

/// For the formats that are decoded whole: 256 MB at 32 bits a pixel.
constexpr qint64 mostWholePixels = 64 << 20;
constexpr int mostWholeMegabytes = 256;

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

/// The reader of a picture in memory, of the format that its first bytes say and no other.
class Reader {
public:
    Reader(const QByteArray &bytes, const char *format)
        : m_bytes(bytes)
        , m_buffer(&m_bytes)
    {
        static const bool isLimited = (QImageReader::setAllocationLimit(mostWholeMegabytes), true);
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
    [[nodiscard]] QImage read() { return m_reader.read(); }
    [[nodiscard]] QImageIOHandler::Transformations transformation() const { return m_reader.transformation(); }

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

QImage turned(const QImage &image, QImageIOHandler::Transformations transformation)
{
    const QImage mirrored = image.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
        transformation.testFlag(QImageIOHandler::TransformationFlip));
    return transformation.testFlag(QImageIOHandler::TransformationRotate90)
        ? mirrored.transformed(QTransform().rotate(90))
        : mirrored;
}

/// Takes the image over, so that a large one is converted where it lies.
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
        return header ? std::optional(ImageFacts {
                            ImageFacts::Type::Jpeg, header->width, header->height, header->progressive && header->jfif})
                      : std::nullopt;
    }
    const QSize size = Reader(bytes, format).size();
    if (size.isEmpty()) {
        return std::nullopt;
    }
    const bool isBitmap = format == std::string_view("bmp");
    return ImageFacts {isBitmap ? ImageFacts::Type::Bmp : ImageFacts::Type::Other, size.width(), size.height(), false};
}

QImage decodeImage(const QByteArray &bytes, int side)
{
    const char *format = formatOf(bytes);
    QImage image;
    QImageIOHandler::Transformations transformation;
    if (format == nullptr) {
        return {};
    }
    if (isJpeg(format)) {
        JpegPicture picture = decodeJpeg(bytes, side);
        image = fitted(std::move(picture.image), side);
        transformation = transformationOf(picture.orientation);
    } else {
        Reader reader(bytes, format);
        const QSize size = reader.size();
        if (size.isEmpty() || qint64(size.width()) * size.height() > mostWholePixels) {
            return {};
        }
        image = fitted(reader.read(), side);
        transformation = reader.transformation();
    }
    if (image.colorSpace().isValid()) {
        image.convertToColorSpace(QColorSpace::SRgb);
    }
    return turned(image, transformation);
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
