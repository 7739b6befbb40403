#include "media/files/StreamProbe.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

namespace StreamProbe {

namespace {

constexpr int bufferSize = 16 * 1024;
constexpr std::int64_t maxBytes = 16 << 20;
constexpr std::size_t maxAllocation = 128 << 20;
constexpr std::int64_t farthest = std::int64_t(1)
    << 62; // a position behind the file's end is one where nothing is read
constexpr int appleLosslessCookieSize = 36;
constexpr int appleLosslessDepthOffset = 17; // in the cookie: 12 bytes of atom header, frame length (4), version (1)

/// The file from `start` on: what comes before is not libavformat's to read.
struct Source {
    const RegularFile &file;
    std::int64_t start = 0;
    std::int64_t position = 0;
    std::int64_t bytesLeft = maxBytes;
};

int readSource(void *opaque, std::uint8_t *buffer, int size)
{
    auto &source = *static_cast<Source *>(opaque);
    const auto wanted = std::size_t(std::clamp<std::int64_t>(size, 0, std::max<std::int64_t>(0, source.bytesLeft)));
    const std::size_t count
        = source.file.readAt(source.start + source.position, {reinterpret_cast<char *>(buffer), wanted});
    source.position += std::int64_t(count);
    source.bytesLeft -= std::int64_t(count);
    return count == 0 ? AVERROR_EOF : int(count);
}

std::int64_t seekSource(void *opaque, std::int64_t offset, int whence)
{
    auto &source = *static_cast<Source *>(opaque);
    const std::int64_t size = source.file.size() - source.start;
    if ((whence & AVSEEK_SIZE) != 0) {
        return size;
    }
    const int from = whence & ~AVSEEK_FORCE;
    const std::int64_t base = from == SEEK_CUR ? source.position : from == SEEK_END ? size : 0;
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0 || target > farthest) {
        return AVERROR(EINVAL);
    }
    return source.position = target;
}

int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EACCES);
}

/// An opened file; closes whatever part of it came into being.
class Opened {
public:
    explicit Opened(Source &source)
    {
        auto *const buffer = static_cast<unsigned char *>(av_malloc(bufferSize));
        m_bytes = buffer != nullptr
            ? avio_alloc_context(buffer, bufferSize, 0, &source, readSource, nullptr, seekSource)
            : nullptr;
        if (m_bytes == nullptr) {
            av_free(buffer);
        }
    }
    ~Opened()
    {
        avformat_close_input(&m_format);
        if (m_bytes != nullptr) {
            av_free(std::exchange(m_bytes->buffer, nullptr));
        }
        avio_context_free(&m_bytes);
    }
    Opened(const Opened &) = delete;
    Opened &operator=(const Opened &) = delete;

    [[nodiscard]] bool open(const char *container)
    {
        m_format = m_bytes != nullptr ? avformat_alloc_context() : nullptr;
        if (m_format == nullptr) {
            return false;
        }
        m_format->pb = m_bytes;
        m_format->io_open = refuseToOpen;
        m_format->probesize = 1 << 20;
        m_format->max_analyze_duration = std::int64_t(2) * AV_TIME_BASE;
        m_format->max_streams = 64;
        AVDictionary *options = nullptr;
        av_dict_set(&options, "format_whitelist", "aac,aiff,ape,caf,flac,matroska,mov,mp3,mpc,mpc8,ogg,w64,wav,wv", 0);
        av_dict_set(&options, "protocol_whitelist", "none", 0);
        av_dict_set(&options, "codec_whitelist",
            "aac,alac,ape,flac,mp1float,mp2float,mp3float,mpc7,mpc8,opus,vorbis,wavpack,pcm_s16le,pcm_s24le,pcm_s32le,"
            "pcm_f32le",
            0);
        // On failure the context is freed and the pointer set to null.
        const int result = avformat_open_input(
            &m_format, "", container != nullptr ? av_find_input_format(container) : nullptr, &options);
        av_dict_free(&options);
        return result == 0;
    }

    [[nodiscard]] AVFormatContext &format() const { return *m_format; }

private:
    AVIOContext *m_bytes = nullptr;
    AVFormatContext *m_format = nullptr;
};

const AVStream *firstAudio(const AVFormatContext &format)
{
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        if (format.streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            return format.streams[i];
        }
    }
    return nullptr;
}

std::uint32_t sourceDepth(const AVCodecParameters &codec)
{
    if (codec.codec_id == AV_CODEC_ID_ALAC && codec.extradata_size >= appleLosslessCookieSize) {
        return codec.extradata[appleLosslessDepthOffset];
    }
    const AVCodecDescriptor *const descriptor = avcodec_descriptor_get(codec.codec_id);
    const bool isLossless = descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_LOSSLESS) != 0
        && (descriptor->props & AV_CODEC_PROP_LOSSY) == 0;
    if (!isLossless) {
        return 0;
    }
    const int bits = codec.bits_per_raw_sample > 0 ? codec.bits_per_raw_sample
        : codec.bits_per_coded_sample > 0          ? codec.bits_per_coded_sample
                                                   : av_get_bits_per_sample(codec.codec_id);
    return std::uint32_t(std::max(0, bits));
}

double lengthInSeconds(const AVFormatContext &format, const AVStream &stream)
{
    if (stream.duration != AV_NOPTS_VALUE && stream.duration > 0) {
        return double(stream.duration) * av_q2d(stream.time_base);
    }
    if (format.duration != AV_NOPTS_VALUE && format.duration > 0) {
        return double(format.duration) / AV_TIME_BASE;
    }
    return 0;
}

MediaFacts factsOf(const AVFormatContext &format)
{
    MediaFacts facts;
    const AVStream *const stream = firstAudio(format);
    if (stream == nullptr) {
        return facts;
    }
    const double seconds = lengthInSeconds(format, *stream);
    facts.seconds = std::isfinite(seconds) ? seconds : 0;
    const AVCodecParameters &codec = *stream->codecpar;
    if (codec.sample_rate > 0) {
        const std::uint32_t depth = sourceDepth(codec);
        facts.stream = codec.codec_id == AV_CODEC_ID_ALAC ? appleLosslessStream(codec.sample_rate, depth)
            : codec.codec_id == AV_CODEC_ID_AAC ? AudioStream {double(codec.sample_rate), AudioFormat::mpeg4Aac, 0, 0}
                                                : AudioStream {double(codec.sample_rate), 0, 0, depth};
    }
    return facts;
}

std::vector<MetadataItem> itemsOf(const AVFormatContext &format, const RegularFile &file)
{
    std::vector<MetadataItem> items;
    const AVStream *const audio = firstAudio(format);
    for (const TextField &field : textFields()) {
        const AVDictionaryEntry *entry = av_dict_get(format.metadata, field.libav, nullptr, 0);
        if (entry == nullptr && audio != nullptr) {
            entry = av_dict_get(audio->metadata, field.libav, nullptr, 0);
        }
        if (entry != nullptr) {
            items.push_back(textItem(field, {QString::fromUtf8(entry->value)}));
        }
    }
    std::vector<Picture> pictures;
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVStream &stream = *format.streams[i];
        if ((stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0 && stream.attached_pic.size > 0) {
            const AVDictionaryEntry *const kind = av_dict_get(stream.metadata, "comment", nullptr, 0);
            const bool isFrontCover = kind != nullptr && std::string_view(kind->value) == "Cover (front)";
            const auto *const bytes = reinterpret_cast<const char *>(stream.attached_pic.data);
            pictures.push_back(
                {.isFrontCover = isFrontCover, .inReader = {bytes, std::size_t(stream.attached_pic.size)}});
        }
    }
    appendPictures(items, pictures, file);
    return items;
}

} // namespace

Answer probe(const RegularFile &file, std::int64_t start, const char *container)
{
    // Both are the whole process's settings. Some readers allocate what a header declares, up to 2 GiB.
    static std::once_flag prepared;
    std::call_once(prepared, [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(maxAllocation);
    });
    Source source {file, start};
    Opened opened(source);
    if (!opened.open(container)) {
        return {};
    }
    Answer answer {factsOf(opened.format()), {}};
    // Reads and decodes a little of the sound, so it comes only where the headers do not say everything.
    if ((!answer.facts.stream || answer.facts.seconds <= 0)
        && avformat_find_stream_info(&opened.format(), nullptr) >= 0) {
        answer.facts = factsOf(opened.format());
    }
    answer.items = itemsOf(opened.format(), file);
    return answer;
}

} // namespace StreamProbe
