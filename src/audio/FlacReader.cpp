// The metadata blocks at the head of a FLAC file: RFC 9639, section 8.
#include "audio/AudioInfo.h"
#include "audio/TagNumbers.h"

#include "media/files/FlacBlocks.h"
#include "platform/MarluneError.h"
#include "platform/files/RegularFile.h"

#include <algorithm>
#include <system_error>

namespace {

constexpr std::uint64_t maxMetadata = 32'000'000; // bytes of all block bodies together
constexpr int maxBlocks = 100'000; ///< far more than any encoder writes; empty ones would lead through a whole file
constexpr std::uint64_t maxPicture = 10'000'000; // bytes

enum BlockType : std::uint8_t { StreamInfo = 0, VorbisComment = 4, Picture = 6 };

/// The file with a small read-ahead window. Throws std::system_error where it cannot be opened.
class FlacFile {
public:
    explicit FlacFile(const std::filesystem::path &file)
        : m_file(RegularFile::openOrThrow(file))
    {
        m_file.expect(RegularFile::Reading::Scattered);
    }

    [[nodiscard]] std::uint64_t size() const { return std::uint64_t(m_file.size()); }
    /// `count` bytes at `position`, at most windowBytes; fewer where the file ends. Valid until the next call.
    [[nodiscard]] QByteArrayView peek(std::uint64_t position, std::uint64_t count)
    {
        const std::span<const char> found = m_window.at(std::int64_t(position), std::size_t(count));
        return {found.data(), qsizetype(found.size())};
    }
    /// `count` bytes at `position`; fewer where the file ends. The caller has held `count` against size().
    [[nodiscard]] QByteArray bytes(std::uint64_t position, std::uint64_t count)
    {
        if (count <= windowBytes) {
            return peek(position, count).toByteArray();
        }
        QByteArray result(qsizetype(count), Qt::Uninitialized);
        result.truncate(qsizetype(m_file.readAt(std::int64_t(position), {result.data(), std::size_t(count)})));
        return result;
    }
    /// Throws if the disk refused a read: what looked like the file's end was none.
    void requireWhole() const
    {
        if (m_file.failure()) {
            throw std::system_error(m_file.failure());
        }
    }

    static constexpr std::uint64_t windowBytes = 4096;

private:
    RegularFile m_file;
    FileWindow m_window {m_file, windowBytes, 0};
};

void readStreamInfo(QByteArrayView block, AudioInfo &info)
{
    const std::optional<FlacBlocks::StreamInfo> found = FlacBlocks::streamInfo(block);
    if (!found) {
        return;
    }
    info.sampleRate = found->sampleRate;
    info.bitDepth = found->bitsPerSample;
    if (found->sampleRate != 0) {
        info.duration = double(found->samples) / double(found->sampleRate);
    }
}

/// Reads no picture that is not taken.
void readPicture(FlacFile &file, std::uint64_t begin, std::uint64_t length, AudioInfo &info)
{
    auto place = FlacBlocks::picturePlace(file.peek(begin, std::min(length, FlacFile::windowBytes)), length);
    if (!place && length > FlacFile::windowBytes) { // its texts are long
        place = FlacBlocks::picturePlace(file.bytes(begin, length), length);
    }
    if (!place || place->length > maxPicture || (!place->isFrontCover && info.picture)) {
        return;
    }
    QByteArray picture = file.bytes(begin + place->offset, place->length);
    if (std::uint64_t(picture.size()) == place->length) { // otherwise the file was cut while it was read
        info.picture = std::move(picture);
    }
}

void readBlock(std::uint8_t type, FlacFile &file, std::uint64_t begin, std::uint64_t length, AudioInfo &info)
{
    switch (type) {
    case StreamInfo:
        readStreamInfo(file.peek(begin, std::min(length, FlacFile::windowBytes)), info);
        break;
    case VorbisComment:
        FlacBlocks::forEachComment(file.bytes(begin, length), [&info](QByteArrayView key, QByteArrayView value) {
            info.tags.insert(FlacBlocks::commentText(key).toUpper(), FlacBlocks::commentText(value));
        });
        break;
    case Picture:
        readPicture(file, begin, length, info);
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

AudioInfo AudioInfo::readFLAC(const std::filesystem::path &path)
{
    FlacFile file(path);
    if (file.peek(0, 4) != "fLaC") {
        throw MarluneError(QStringLiteral("Nieprawidłowy nagłówek FLAC."));
    }
    AudioInfo info;
    info.codec = QStringLiteral("FLAC");
    std::uint64_t total = 0;
    int blocks = 0;
    bool isLast = false;
    for (std::uint64_t position = 4; !isLast;) {
        ByteCursor header(file.peek(position, 4), ByteOrder::Big);
        const std::optional<std::uint64_t> type = header.number(1);
        const std::optional<std::uint64_t> length = header.number(3);
        if (!type || !length) {
            break; // the file ends at a block's header: what has been read stays
        }
        isLast = (*type & 0x80) != 0;
        position += 4;
        total += *length;
        if (total >= maxMetadata || ++blocks > maxBlocks || position > file.size()
            || *length > file.size() - position) {
            throw MarluneError(QStringLiteral("Nieprawidłowe metadane FLAC."));
        }
        readBlock(*type & 0x7F, file, position, *length, info);
        position += *length;
    }
    file.requireWhole();
    takeNumbers(info);
    return info;
}
