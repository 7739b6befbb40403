#include "media/pictures/Jpeg.h"

#include "media/pictures/TiffDirectory.h"
#include "platform/files/ByteCursor.h"

#include <QColorSpace>

#include <algorithm>
#include <array>
#include <bit>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <span>
#include <vector>

#include <jpeglib.h>

namespace {

constexpr std::int64_t maxPixels = 200'000'000;
/// A picture in several scans is held whole, as coefficients, before its first row comes out: 2 bytes a sample.
constexpr long maxCoefficientBytes = 390'000'000;
/// Each scan may cost a walk through the whole picture for a few bytes; honest ones have about ten.
constexpr int maxScans = 100;

constexpr J_COLOR_SPACE imagePixels = std::endian::native == std::endian::little ? JCS_EXT_BGRX : JCS_EXT_XRGB;
constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int profileMarker = JPEG_APP0 + 2;

/// One picture on its way through libjpeg, which reports an error by a jump out of whatever it is doing.
class Decompression {
public:
    explicit Decompression(const QByteArray &bytes)
    {
        m_info.err = jpeg_std_error(&m_errors);
        m_errors.error_exit
            = [](j_common_ptr info) { std::longjmp(static_cast<Decompression *>(info->client_data)->m_leave, 1); };
        m_errors.emit_message = [](j_common_ptr, int) { };
        m_info.client_data = this;
        m_isReady = run([&bytes](jpeg_decompress_struct &info) {
            void *const self = info.client_data;
            jpeg_create_decompress(&info);
            info.client_data = self;
            info.mem->max_memory_to_use = maxCoefficientBytes;
            jpeg_mem_src(&info, reinterpret_cast<const unsigned char *>(bytes.constData()),
                static_cast<unsigned long>(bytes.size()));
        });
    }
    ~Decompression() { jpeg_destroy_decompress(&m_info); }
    Decompression(const Decompression &) = delete;
    Decompression &operator=(const Decompression &) = delete;

    /// False if libjpeg gave up within `step`. A jump runs no destructors, so `step` must hold nothing that has one.
    template <typename Step> [[nodiscard]] bool run(const Step &step)
    {
        if (setjmp(m_leave) != 0) {
            return false;
        }
        step(m_info);
        return true;
    }

    /// Keeps the markers of Exif and of colour profiles if asked to.
    [[nodiscard]] bool readHeader(bool keepsMarkers)
    {
        return m_isReady && run([keepsMarkers](jpeg_decompress_struct &info) {
            for (const int marker : {exifMarker, profileMarker}) {
                jpeg_save_markers(&info, marker, keepsMarkers ? 0xFFFF : 0);
            }
            (void)jpeg_read_header(&info, TRUE);
        });
    }

    [[nodiscard]] const jpeg_decompress_struct &info() const { return m_info; }

private:
    jpeg_decompress_struct m_info {};
    jpeg_error_mgr m_errors {};
    std::jmp_buf m_leave {};
    bool m_isReady = false;
};

/// What the first Exif marker that knows says (Exif 2.32, section 4.7.2); 1 if none does.
int orientationOf(const jpeg_decompress_struct &info)
{
    for (const jpeg_marker_struct *marker = info.marker_list; marker != nullptr; marker = marker->next) {
        ByteCursor bytes({marker->data, qsizetype(marker->data_length)}, ByteOrder::Big);
        if (marker->marker != exifMarker || !bytes.skipText({"Exif\0\0", 6})) {
            continue;
        }
        if (const std::optional<int> orientation = tiffOrientation(*bytes.take(bytes.remaining()))) {
            return *orientation;
        }
    }
    return 1;
}

QColorSpace profileOf(Decompression &picture)
{
    JOCTET *bytes = nullptr;
    unsigned int length = 0;
    const bool isRead
        = picture.run([&](jpeg_decompress_struct &info) { (void)jpeg_read_icc_profile(&info, &bytes, &length); });
    if (!isRead || bytes == nullptr) {
        return {};
    }
    const QByteArray profile(reinterpret_cast<const char *>(bytes), qsizetype(length));
    std::free(bytes);
    return QColorSpace::fromIccProfile(profile);
}

/// Whether the scans to come would move no pixel of the reduced component by more than a few levels of 255.
/// `missing` has for each coefficient the number of low bits that have not come, or -1, in the order of the scans.
bool isFineEnough(const jpeg_component_info &component, const int (&missing)[DCTSIZE2])
{
    if (component.quant_table == nullptr) {
        return false;
    }
    if (component.DCT_scaled_size > 2) {
        return std::all_of(std::begin(missing), std::end(missing), [](int bits) { return bits == 0; });
    }
    // What a block of 1 or 2 pixels a side is made of; the table has the order of rows.
    struct Place {
        int scanned;
        int tabled;
    };
    constexpr std::array<Place, 4> lowest {Place {0, 0}, Place {1, 1}, Place {2, 8}, Place {4, 9}};
    constexpr int maxMissing = 8; // a pixel gets an eighth to a quarter of a coefficient (ITU-T T.81, A.3.3)
    const auto needed = std::span(lowest).first(component.DCT_scaled_size == 1 ? 1 : lowest.size());
    return std::all_of(needed.begin(), needed.end(), [&](const Place &place) {
        const int bits = missing[place.scanned];
        return bits >= 0 && ((1 << bits) - 1) * component.quant_table->quantval[place.tabled] <= maxMissing;
    });
}

/// The last scan of a progressive picture brings the lowest bit of all fine detail: half of the file, and half of the
/// time, for what a reduction does not show.
bool isFineEnough(const jpeg_decompress_struct &info)
{
    if (info.coef_bits == nullptr) { // not progressive: each scan brings a component that has not been there yet
        return false;
    }
    for (int i = 0; i < info.num_components; ++i) {
        if (!isFineEnough(info.comp_info[i], info.coef_bits[i])) {
            return false;
        }
    }
    return true;
}

/// Sets the reduction up; the rows can be read afterwards.
void start(jpeg_decompress_struct &info, int side)
{
    const bool isCmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
    info.out_color_space = isCmyk ? JCS_CMYK : imagePixels;
    info.do_block_smoothing = FALSE;
    const std::int64_t longer = std::max(info.image_width, info.image_height);
    // Only these factors have fast transforms.
    info.scale_denom = 8;
    info.scale_num = 1;
    while (info.scale_num < 8 && longer * info.scale_num < std::int64_t(side) * 8) {
        info.scale_num *= 2;
    }
    info.buffered_image = jpeg_has_multiple_scans(&info);
    (void)jpeg_start_decompress(&info);
    if (info.buffered_image == FALSE) {
        return;
    }
    for (int state = JPEG_ROW_COMPLETED; state != JPEG_REACHED_EOI; state = jpeg_consume_input(&info)) {
        if (state == JPEG_SCAN_COMPLETED && (info.input_scan_number >= maxScans || isFineEnough(info))) {
            break;
        }
    }
    (void)jpeg_start_output(&info, info.input_scan_number);
}

/// A row of cyan, magenta, yellow and black. Adobe's programs write the amount of light, not of ink.
void paintCmyk(std::span<const JSAMPLE> row, bool isLight, QRgb *pixels)
{
    const auto light = [isLight](JSAMPLE value) { return isLight ? value : MAXJSAMPLE - value; };
    for (std::size_t i = 0; i + 3 < row.size(); i += 4) {
        const int black = light(row[i + 3]);
        *pixels++ = qRgb(light(row[i]) * black / 255, light(row[i + 1]) * black / 255, light(row[i + 2]) * black / 255);
    }
}

/// Rows that libjpeg no longer gives stay as they are.
void readRows(Decompression &picture, QImage &image)
{
    const bool isCmyk = picture.info().out_color_space == JCS_CMYK;
    const bool isLight = picture.info().saw_Adobe_marker != FALSE;
    std::vector<JSAMPLE> row(isCmyk ? std::size_t(image.width()) * 4 : 0);
    uchar *const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    (void)picture.run([&](jpeg_decompress_struct &info) {
        while (info.output_scanline < info.output_height) {
            uchar *const line = bits + qsizetype(info.output_scanline) * stride;
            JSAMPROW target = isCmyk ? row.data() : line;
            if (jpeg_read_scanlines(&info, &target, 1) != 1) {
                return;
            }
            if (isCmyk) {
                paintCmyk(row, isLight, reinterpret_cast<QRgb *>(line));
            }
        }
    });
}

} // namespace

std::optional<JpegHeader> readJpegHeader(const QByteArray &bytes)
{
    Decompression picture(bytes);
    if (!picture.readHeader(false)) {
        return std::nullopt;
    }
    const jpeg_decompress_struct &info = picture.info();
    return JpegHeader {
        int(info.image_width), int(info.image_height), info.progressive_mode != FALSE, info.saw_JFIF_marker != FALSE};
}

JpegPicture decodeJpeg(const QByteArray &bytes, int side)
{
    Decompression picture(bytes);
    const jpeg_decompress_struct &info = picture.info();
    if (!picture.readHeader(true) || std::int64_t(info.image_width) * info.image_height > maxPixels
        || !picture.run([side](jpeg_decompress_struct &started) { start(started, side); })) {
        return {};
    }
    QImage image(int(info.output_width), int(info.output_height), QImage::Format_RGB32);
    if (image.isNull()) {
        return {};
    }
    image.fill(Qt::white);
    readRows(picture, image);
    image.setColorSpace(profileOf(picture));
    return {image, orientationOf(info)};
}
