#include "media/files/Mp4SampleEntry.h"

#include "media/files/FlacBlocks.h"

#include <algorithm>
#include <array>

namespace {

/// The content of the first atom of this type, wherever it is among the atoms that `cursor` walks through.
std::optional<QByteArrayView> findAtom(ByteCursor cursor, QByteArrayView type)
{
    constexpr std::uint64_t headerSize = 8;
    while (const std::optional<std::uint64_t> size = cursor.number(4)) {
        const std::optional<QByteArrayView> name = cursor.take(4);
        const std::optional<QByteArrayView> content
            = name && *size >= headerSize ? cursor.take(*size - headerSize) : std::nullopt;
        if (!content || *name == type) {
            return content;
        }
    }
    return std::nullopt;
}

/// Bits from the most significant on; zeros behind the end.
class Bits {
public:
    explicit Bits(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    [[nodiscard]] qsizetype left() const { return m_bytes.size() * 8 - m_position; }
    std::uint32_t take(int count)
    {
        std::uint32_t value = 0;
        for (; count > 0; --count, ++m_position) {
            const bool isSet = left() > 0 && (m_bytes[m_position / 8] >> (7 - m_position % 8) & 1) != 0;
            value = value << 1 | std::uint32_t(isSet);
        }
        return value;
    }
    [[nodiscard]] std::uint32_t look(int count) const { return Bits(*this).take(count); }

private:
    QByteArrayView m_bytes;
    qsizetype m_position = 0;
};

std::uint32_t takeObjectType(Bits &bits)
{
    constexpr std::uint32_t escape = 31;
    const std::uint32_t type = bits.take(5);
    return type == escape ? 32 + bits.take(6) : type;
}

/// Those whose configuration is a GASpecificConfig: AAC in its older forms.
bool isGeneralAudio(std::uint32_t objectType)
{
    constexpr std::array<std::uint32_t, 12> types {1, 2, 3, 4, 6, 7, 17, 19, 20, 21, 22, 23};
    return std::find(types.begin(), types.end(), objectType) != types.end();
}

std::uint32_t takeSampleRate(Bits &bits)
{
    constexpr std::array<std::uint32_t, 13> rates {
        96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};
    constexpr std::uint32_t writtenOut = 15;
    const std::uint32_t index = bits.take(4);
    return index == writtenOut ? bits.take(24) : index < rates.size() ? rates.at(index) : 0;
}

/// The rate that an AudioSpecificConfig leads to, 0 for object types not known here. Spectral band replication doubles
/// that of the core; it is announced in front of the core's configuration or, where old decoders are to play the core
/// alone, behind it.
std::uint32_t sampleRateOf(QByteArrayView configuration)
{
    constexpr std::uint32_t bandReplication = 5;
    constexpr std::uint32_t parametricStereo = 29;
    constexpr std::uint32_t unifiedSpeechAndAudio = 42; // names the rate after replication
    constexpr int syncWidth = 11;
    constexpr std::uint32_t syncExtension = 0x2B7;
    Bits bits(configuration);
    const std::uint32_t objectType = takeObjectType(bits);
    const std::uint32_t coreRate = takeSampleRate(bits);
    (void)bits.take(4); // channels
    if (objectType == unifiedSpeechAndAudio) {
        return coreRate;
    }
    std::uint32_t outputRate = 0;
    if (objectType == bandReplication || objectType == parametricStereo) {
        outputRate = takeSampleRate(bits);
    } else if (!isGeneralAudio(objectType)) {
        return 0;
    } else {
        while (bits.left() > syncWidth && bits.look(syncWidth) != syncExtension) {
            (void)bits.take(1);
        }
        (void)bits.take(syncWidth);
        outputRate = takeObjectType(bits) == bandReplication && bits.take(1) == 1 ? takeSampleRate(bits) : 0;
    }
    return outputRate > 0 ? outputRate : coreRate;
}

/// What the descriptors in an atom "esds" lead to (ISO 14496-1, section 7.2.6).
struct Decoder {
    std::uint64_t objectType = 0;
    QByteArrayView configuration;
};

/// Takes a descriptor's tag and length; the length has seven bits a byte, the eighth says that one more follows.
bool skipDescriptorHead(ByteCursor &cursor, std::uint64_t tag, std::uint64_t &length)
{
    constexpr int maxLengthBytes = 4;
    bool isMore = cursor.number(1) == tag;
    length = 0;
    for (int i = 0; isMore && i < maxLengthBytes; ++i) {
        const std::optional<std::uint64_t> byte = cursor.number(1);
        length = length << 7 | (byte.value_or(0) & 0x7F);
        isMore = byte.value_or(0) >= 0x80;
        if (byte && !isMore) {
            return true;
        }
    }
    return false;
}

std::optional<Decoder> decoderOf(QByteArrayView esds)
{
    ByteCursor cursor(esds, ByteOrder::Big);
    std::uint64_t length = 0;
    if (!cursor.skip(4) || !skipDescriptorHead(cursor, 3, length) || !cursor.skip(2)) { // version; ES_ID
        return std::nullopt;
    }
    const std::uint64_t flags = cursor.number(1).value_or(0);
    if ((flags & 0x80) != 0) {
        cursor.skip(2); // the stream that this one depends on
    }
    if ((flags & 0x40) != 0) {
        cursor.skip(cursor.number(1).value_or(0)); // an address
    }
    if ((flags & 0x20) != 0) {
        cursor.skip(2); // the stream of the clock
    }
    if (!skipDescriptorHead(cursor, 4, length)) {
        return std::nullopt;
    }
    Decoder decoder;
    decoder.objectType = cursor.number(1).value_or(0);
    constexpr std::uint64_t bufferAndRates = 12;
    if (cursor.skip(bufferAndRates) && skipDescriptorHead(cursor, 5, length)) {
        decoder.configuration = cursor.take(length).value_or(QByteArrayView());
    }
    return decoder;
}

std::optional<AudioStream> mpeg4Stream(QByteArrayView esds, double entryRate)
{
    constexpr std::array<std::uint64_t, 4> aac {0x40, 0x66, 0x67, 0x68};
    const std::optional<Decoder> decoder = decoderOf(esds);
    if (!decoder) {
        return std::nullopt;
    }
    if (std::find(aac.begin(), aac.end(), decoder->objectType) == aac.end()) {
        return AudioStream {entryRate, 0, 0, 0}; // MP3, among others
    }
    const double rate = decoder->configuration.isEmpty() ? 0 : sampleRateOf(decoder->configuration);
    // Some writers name the doubled rate in the entry alone.
    return AudioStream {rate > 0 && entryRate != 2 * rate ? rate : entryRate, AudioFormat::mpeg4Aac, 0, 0};
}

std::optional<AudioStream> flacStream(QByteArrayView blocks)
{
    ByteCursor cursor(blocks, ByteOrder::Big);
    const bool isStreamInfo = cursor.skip(4) && (cursor.number(1).value_or(1) & 0x7F) == 0; // version; block type
    const std::uint64_t length = cursor.number(3).value_or(0);
    const std::optional<QByteArrayView> block = isStreamInfo ? cursor.take(length) : std::nullopt;
    const auto info = block ? FlacBlocks::streamInfo(*block) : std::nullopt;
    return info ? std::optional(AudioStream {double(info->sampleRate), 0, 0, info->bitsPerSample}) : std::nullopt;
}

} // namespace

std::optional<AudioStream> mp4EntryStream(QByteArrayView descriptions)
{
    constexpr std::uint64_t listHead = 8;
    ByteCursor cursor(descriptions, ByteOrder::Big);
    cursor.skip(listHead);
    cursor.skip(4); // the entry's size: its content ends by itself
    const QByteArrayView format = cursor.take(4).value_or(QByteArrayView());
    cursor.skip(8);
    const std::uint64_t version = cursor.number(2).value_or(0); // QuickTime's; each adds to the entry
    cursor.skip(14);
    const double rate = double(cursor.number(4).value_or(0) >> 16);
    cursor.skip(version == 1 ? 16 : version == 2 ? 36 : 0);
    if (format == "fLaC") {
        const auto blocks = findAtom(cursor, "dfLa");
        return blocks ? flacStream(*blocks) : std::nullopt;
    }
    if (format != "mp4a") {
        return std::nullopt;
    }
    auto descriptors = findAtom(cursor, "esds");
    if (const auto wave = descriptors ? std::nullopt : findAtom(cursor, "wave")) { // QuickTime puts it in there
        descriptors = findAtom({*wave, ByteOrder::Big}, "esds");
    }
    return descriptors ? mpeg4Stream(*descriptors, rate) : std::nullopt;
}
