// FLAC metadata blocks: RFC 9639, section 8; their Vorbis comments: section 8.6.
#include "audio/FlacReader.h"

#include "audio/AudioInfo.h"
#include "audio/TagNumbers.h"

#include "platform/MarluneError.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <system_error>

namespace {

constexpr std::uint64_t mostMetadata = 32'000'000; // bytes of all block bodies together
constexpr int mostBlocks = 100'000; ///< far more than any encoder writes; empty ones would lead through a whole file
constexpr std::uint32_t mostComments = 9'999;
constexpr std::uint32_t largestPicture = 10'000'000; // bytes
constexpr std::uint32_t frontCover = 3; // RFC 9639, table 13

enum BlockType : std::uint8_t { StreamInfo = 0, VorbisComment = 4, Picture = 6 };

std::uint64_t bigEndian(std::span<const unsigned char> bytes)
{
    std::uint64_t value = 0;
    for (const unsigned char byte : bytes) {
        value = value << 8 | byte;
    }
    return value;
}

/// RFC 9639, section 8.2: behind the block and frame sizes, 20 bits of rate, 3 of channels, 5 of depth and 36 of
/// length.
void readStreamInfo(FlacFile &file, std::uint64_t begin, std::uint64_t length, AudioInfo &info)
{
    constexpr std::uint64_t streamInfoBytes = 34;
    if (length != streamInfoBytes) {
        return;
    }
    const std::uint64_t value = bigEndian(file.peek(begin + 10, 8));
    info.sampleRate = std::int64_t(value >> 44);
    info.bitDepth = std::int64_t(value >> 36 & 0x1F) + 1;
    if (info.sampleRate != 0) {
        info.duration = double(value & 0xF'FFFF'FFFF) / double(info.sampleRate);
    }
}

void readComments(BlockCursor cursor, AudioInfo &info)
{
    const std::optional<std::uint32_t> vendorLength = cursor.integer(ByteOrder::Little);
    if (!vendorLength || !cursor.skip(*vendorLength)) {
        return;
    }
    const std::uint32_t count = cursor.integer(ByteOrder::Little).value_or(0);
    if (count > mostComments) {
        return;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::optional<std::uint32_t> length = cursor.integer(ByteOrder::Little);
        const std::optional<QByteArrayView> bytes = length ? cursor.takeView(*length) : std::nullopt;
        if (!bytes) {
            return;
        }
        const qsizetype equals = bytes->indexOf('=');
        if (equals >= 0 && QUtf8StringView(*bytes).isValidUtf8()) {
            info.tags.insert(
                QString::fromUtf8(bytes->first(equals)).toUpper(), QString::fromUtf8(bytes->sliced(equals + 1)));
        }
    }
}

void readPicture(BlockCursor cursor, AudioInfo &info)
{
    const bool front = cursor.integer(ByteOrder::Big).value_or(0) == frontCover;
    for (int text = 0; text < 2; ++text) { // the MIME type, then the description
        const std::optional<std::uint32_t> length = cursor.integer(ByteOrder::Big);
        if (!length || !cursor.skip(*length)) {
            return;
        }
    }
    for (int field = 0; field < 4; ++field) { // width, height, depth, number of colours
        cursor.skip(4);
    }
    const std::optional<std::uint32_t> length = cursor.integer(ByteOrder::Big);
    if (!length || *length > largestPicture || *length > cursor.remaining()) {
        return;
    }
    if (front || !info.picture) {
        info.picture = cursor.take(*length);
    }
}

void readBlock(std::uint8_t type, FlacFile &file, std::uint64_t begin, std::uint64_t length, AudioInfo &info)
{
    switch (type) {
    case StreamInfo:
        readStreamInfo(file, begin, length, info);
        break;
    case VorbisComment:
        readComments({file, begin, length}, info);
        break;
    case Picture:
        readPicture({file, begin, length}, info);
        break;
    default:
        break;
    }
}

/// A damaged tag can hold a negative number; a position on a disc is none.
std::int64_t position(const AudioInfo &info, const QString &key)
{
    return std::max<std::int64_t>(0, tagNumber(info.tags.value(key)).value_or(0));
}

void takeNumbers(AudioInfo &info)
{
    info.trackNumber = position(info, QStringLiteral("TRACKNUMBER"));
    info.discNumber = position(info, QStringLiteral("DISCNUMBER"));
    const auto date = info.tags.constFind(QStringLiteral("DATE"));
    info.year = tagYear(date != info.tags.constEnd() ? *date : info.tags.value(QStringLiteral("YEAR")));
}

} // namespace

std::span<const unsigned char> FlacFile::peek(std::uint64_t position, std::size_t count)
{
    const std::span<const char> found = m_window.at(std::int64_t(position), count);
    return {reinterpret_cast<const unsigned char *>(found.data()), found.size()};
}

QByteArray FlacFile::bytes(std::uint64_t position, std::size_t count)
{
    if (count <= windowBytes) {
        const std::span<const char> found = m_window.at(std::int64_t(position), count);
        return {found.data(), qsizetype(found.size())};
    }
    QByteArray result(qsizetype(count), Qt::Uninitialized);
    result.truncate(qsizetype(m_file.readAt(std::int64_t(position), {result.data(), count})));
    return result;
}

QByteArrayView FlacFile::view(std::uint64_t position, std::size_t count)
{
    if (count > windowBytes) {
        m_long = bytes(position, count);
        return m_long;
    }
    const std::span<const char> found = m_window.at(std::int64_t(position), count);
    return {found.data(), qsizetype(found.size())};
}

void FlacFile::requireWhole() const
{
    if (m_file.failure()) {
        throw std::system_error(m_file.failure());
    }
}

std::optional<std::uint32_t> BlockCursor::integer(ByteOrder order)
{
    if (remaining() < 4) {
        return std::nullopt;
    }
    const std::span<const unsigned char> found = m_file.peek(m_position, 4);
    if (found.size() < 4) {
        return std::nullopt; // the file was cut while it was read
    }
    m_position += 4;
    std::array<unsigned char, 4> bytes {};
    std::copy(found.begin(), found.end(), bytes.begin());
    if (order == ByteOrder::Little) {
        std::reverse(bytes.begin(), bytes.end());
    }
    return std::uint32_t(bigEndian(bytes));
}

bool BlockCursor::skip(std::uint64_t count)
{
    if (count > remaining()) {
        return false;
    }
    m_position += count;
    return true;
}

std::optional<QByteArray> BlockCursor::take(std::uint64_t count)
{
    if (count > remaining()) {
        return std::nullopt;
    }
    QByteArray result = m_file.bytes(m_position, std::size_t(count));
    if (std::uint64_t(result.size()) != count) {
        return std::nullopt; // the file was cut while it was read
    }
    m_position += count;
    return result;
}

std::optional<QByteArrayView> BlockCursor::takeView(std::uint64_t count)
{
    const QByteArrayView result = count <= remaining() ? m_file.view(m_position, std::size_t(count)) : QByteArrayView();
    if (count > remaining() || std::uint64_t(result.size()) != count) {
        return std::nullopt;
    }
    m_position += count;
    return result;
}

AudioInfo AudioInfo::readFLAC(const std::filesystem::path &path)
{
    FlacFile file(path);
    const std::span<const unsigned char> magic = file.peek(0, 4);
    if (magic.size() != 4 || std::memcmp(magic.data(), "fLaC", 4) != 0) {
        throw MarluneError(QStringLiteral("Nieprawidłowy nagłówek FLAC."));
    }
    AudioInfo info;
    info.codec = QStringLiteral("FLAC");
    std::uint64_t total = 0;
    int blocks = 0;
    bool last = false;
    for (std::uint64_t position = 4; !last;) {
        const std::span<const unsigned char> header = file.peek(position, 4);
        if (header.size() < 4) {
            break; // the file ends at a block's header: what has been read stands
        }
        last = (header[0] & 0x80) != 0;
        const std::uint8_t type = header[0] & 0x7F;
        const std::uint64_t length = bigEndian(header.subspan(1));
        position += 4;
        total += length;
        if (total >= mostMetadata || ++blocks > mostBlocks || position > file.size()
            || length > file.size() - position) {
            throw MarluneError(QStringLiteral("Nieprawidłowe metadane FLAC."));
        }
        readBlock(type, file, position, length, info);
        position += length;
    }
    file.requireWhole();
    takeNumbers(info);
    return info;
}
