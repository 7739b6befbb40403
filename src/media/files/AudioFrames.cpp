#include "media/files/AudioFrames.h"

#include <algorithm>
#include <array>

namespace AudioFrames {

namespace {

constexpr std::size_t bufferSize = 65'536;
constexpr std::size_t maxFrame = 8'192; // a search looks ahead and goes back by no more
constexpr std::int64_t maxCount = 64LL << 20;
constexpr std::int64_t maxJunk = 1 << 20;
constexpr std::int64_t shortRun = 32'768;

// Rows: MPEG-1 layers I, II, III, then MPEG-2 and 2.5 layer I, layers II and III.
constexpr std::array<std::array<std::uint16_t, 15>, 5> bitRates {{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
}};
constexpr std::array<std::uint32_t, 3> mpegSampleRates {44100, 48000, 32000};
constexpr std::array<std::uint32_t, 13> adtsSampleRates {
    96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};

std::uint32_t byteAt(std::span<const char> bytes, std::size_t position)
{
    return static_cast<unsigned char>(bytes[position]);
}

std::optional<Frame> mpegFrame(std::span<const char> bytes)
{
    const std::uint32_t version = (byteAt(bytes, 1) >> 3) & 3; // 3 = MPEG-1, 2 = MPEG-2, 0 = MPEG-2.5
    const std::uint32_t layer = 4 - ((byteAt(bytes, 1) >> 1) & 3);
    const std::uint32_t rateIndex = byteAt(bytes, 2) >> 4;
    const std::uint32_t sampleIndex = (byteAt(bytes, 2) >> 2) & 3;
    if (byteAt(bytes, 0) != 0xFF || (byteAt(bytes, 1) & 0xE0) != 0xE0 || version == 1 || layer == 4 || rateIndex == 0
        || rateIndex == 15 || sampleIndex == 3) {
        return std::nullopt;
    }
    const bool isFirstVersion = version == 3;
    const std::size_t row = isFirstVersion ? layer - 1 : layer == 1 ? 3 : 4;
    const std::uint32_t bitRate = bitRates[row][rateIndex];
    const std::uint32_t sampleRate = mpegSampleRates[sampleIndex] >> (isFirstVersion ? 0 : version == 2 ? 1 : 2);
    const std::uint32_t padding = (byteAt(bytes, 2) >> 1) & 1;
    const std::uint32_t samples = layer == 1 ? 384 : layer == 3 && !isFirstVersion ? 576 : 1152;
    const std::uint32_t slot = layer == 1 ? 4 : 1; // bytes
    const std::uint32_t slots = samples / 8 / slot * bitRate * 1000 / sampleRate + padding;
    return Frame {slots * slot, samples, sampleRate, bitRate};
}

std::optional<Frame> adtsFrame(std::span<const char> bytes)
{
    const std::uint32_t sampleIndex = (byteAt(bytes, 2) >> 2) & 15;
    const std::uint32_t length = (byteAt(bytes, 3) & 3) << 11 | byteAt(bytes, 4) << 3 | byteAt(bytes, 5) >> 5;
    if (byteAt(bytes, 0) != 0xFF || (byteAt(bytes, 1) & 0xF6) != 0xF0 || sampleIndex >= adtsSampleRates.size()
        || length <= headerSize) {
        return std::nullopt;
    }
    return Frame {length, 1024 * (1 + (byteAt(bytes, 6) & 3)), adtsSampleRates[sampleIndex], 0};
}

/// Steps from frame to frame. Bytes between frames are skipped up to a limit; a frame found behind them counts only
/// if another one follows it, or it ends the file.
class Walk {
public:
    Walk(const RegularFile &file, Kind kind, std::int64_t position)
        : m_file(file)
        , m_kind(kind)
        , m_position(position)
        , m_window(file, bufferSize, maxFrame)
    {
    }

    [[nodiscard]] std::optional<Frame> next()
    {
        std::optional<Frame> frame = fittingFrame(m_position);
        if (!frame || (!m_isInStep && !isConfirmed(m_position, *frame))) {
            frame = findFrame();
        }
        if (frame) {
            m_isInStep = true;
            m_sampleRate = frame->sampleRate;
            m_position += frame->bytes;
        }
        return frame;
    }

    [[nodiscard]] std::int64_t position() const { return m_position; }

private:
    std::optional<Frame> fittingFrame(std::int64_t position)
    {
        const std::optional<Frame> frame = frameAt(m_kind, m_window.at(position, headerSize));
        return frame && (m_sampleRate == 0 || frame->sampleRate == m_sampleRate) ? frame : std::nullopt;
    }

    bool isConfirmed(std::int64_t position, const Frame &frame)
    {
        const std::int64_t end = position + frame.bytes;
        if (end >= m_file.size()) {
            return end == m_file.size();
        }
        const std::optional<Frame> following = fittingFrame(end);
        return following && following->sampleRate == frame.sampleRate;
    }

    std::optional<Frame> findFrame()
    {
        const std::int64_t limit = std::min(m_position + maxJunk, m_file.size());
        for (std::int64_t position = m_position; position < limit; ++position) {
            const std::optional<Frame> frame = fittingFrame(position);
            if (frame && isConfirmed(position, *frame)) {
                m_position = position;
                return frame;
            }
        }
        return std::nullopt;
    }

    const RegularFile &m_file;
    Kind m_kind;
    std::int64_t m_position;
    std::uint32_t m_sampleRate = 0;
    bool m_isInStep = false;
    FileWindow m_window;
};

} // namespace

std::optional<Frame> frameAt(Kind kind, std::span<const char> bytes)
{
    if (bytes.size() < headerSize) {
        return std::nullopt;
    }
    return kind == Kind::Mpeg ? mpegFrame(bytes) : adtsFrame(bytes);
}

bool isAnyNear(const RegularFile &file, Kind kind, std::int64_t position)
{
    return Walk(file, kind, position).next().has_value();
}

std::optional<double> seconds(const RegularFile &file, Kind kind, std::int64_t position)
{
    file.expect(RegularFile::Reading::Onward);
    Walk walk(file, kind, position);
    std::int64_t samples = 0;
    std::uint32_t sampleRate = 0;
    while (const std::optional<Frame> frame = walk.next()) {
        samples += frame->samples;
        sampleRate = frame->sampleRate;
        if (walk.position() - position > maxCount) {
            const double partRead
                = double(walk.position() - position) / double(std::max(file.size(), walk.position()) - position);
            return double(samples) / sampleRate / partRead;
        }
    }
    if (sampleRate == 0) {
        return std::nullopt;
    }
    return double(samples) / sampleRate;
}

bool hasVariableBitRate(const RegularFile &file, std::int64_t position)
{
    std::uint32_t bitRate = 0;
    for (const std::int64_t start : {position, position + (file.size() - position) / 2}) {
        Walk walk(file, Kind::Mpeg, start);
        while (const std::optional<Frame> frame = walk.next()) {
            if (bitRate != 0 && frame->bitRate != bitRate) {
                return true;
            }
            bitRate = frame->bitRate;
            if (walk.position() - start > shortRun) {
                break;
            }
        }
    }
    return false;
}

} // namespace AudioFrames
