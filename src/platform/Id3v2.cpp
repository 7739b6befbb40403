#include "platform/Id3v2.h"

#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace Id3v2 {

namespace {

constexpr int mostFrames = 5000;
constexpr std::int64_t largestCoded = 16 << 20; // bytes of a tag that are decoded in memory
constexpr unsigned tagUnsynchronised = 0x80;
constexpr unsigned tagHasExtendedHeader = 0x40;
constexpr unsigned frontCover = 3;
constexpr std::int64_t longestPictureHeader = 1024;

unsigned byteAt(std::span<const char> bytes, std::size_t position)
{
    return position < bytes.size() ? static_cast<unsigned char>(bytes[position]) : 0;
}

/// A big-endian number of the whole span, `bitsPerByte` of each byte.
std::uint32_t number(std::span<const char> bytes, int bitsPerByte)
{
    std::uint32_t value = 0;
    for (const char byte : bytes) {
        value = value << bitsPerByte | (static_cast<unsigned char>(byte) & ((1U << bitsPerByte) - 1));
    }
    return value;
}

/// Takes out the zero that stands behind each byte 0xFF.
QByteArray resynchronised(const QByteArray &bytes)
{
    QByteArray plain;
    plain.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        plain.push_back(bytes[i]);
        if (bytes[i] == '\xFF' && i + 1 < bytes.size() && bytes[i + 1] == '\0') {
            ++i;
        }
    }
    return plain;
}

/// The tag's body, in the file or, where it had to be decoded, in memory.
class Bytes {
public:
    Bytes(BoundedStream &stream, const Id3v2Body &body)
        : m_stream(stream)
        , m_start(body.position)
        , m_size(std::max<std::int64_t>(0, std::min(body.length, stream.length() - body.position)))
    {
    }

    [[nodiscard]] std::int64_t size() const { return m_decoded ? m_decoded->size() : m_size; }

    /// At most BoundedStream::window bytes, fewer at the end. Valid until the next call.
    [[nodiscard]] std::span<const char> at(std::int64_t position, std::int64_t length)
    {
        const auto count = std::size_t(std::clamp<std::int64_t>(size() - position, 0, length));
        if (m_decoded) {
            return {m_decoded->constData() + std::min(position, size()), count};
        }
        return m_stream.at(m_start + position, count);
    }

    /// Cut short where the tag makes more than largestCoded bytes of copies necessary.
    [[nodiscard]] QByteArray copy(std::int64_t position, std::int64_t length)
    {
        const std::int64_t count = std::clamp<std::int64_t>(size() - position, 0, std::min(length, m_codedLeft));
        m_codedLeft -= count;
        if (m_decoded) {
            return m_decoded->mid(position, count);
        }
        QByteArray bytes(count, Qt::Uninitialized);
        bytes.truncate(qsizetype(m_stream.file().readAt(m_start + position, {bytes.data(), std::size_t(count)})));
        return bytes;
    }

    /// The picture at this place, not read if it stands in the file as it is.
    [[nodiscard]] Picture picture(std::int64_t position, std::int64_t length, bool isFrontCover)
    {
        if (m_decoded) {
            return {.isFrontCover = isFrontCover, .own = copy(position, length)};
        }
        return {.isFrontCover = isFrontCover, .inFile = {m_start + position, length}};
    }

    void decode()
    {
        m_decoded = resynchronised(copy(0, m_size));
        m_codedLeft = m_decoded->size(); // pieces of it do not overlap
    }

private:
    BoundedStream &m_stream;
    std::int64_t m_start;
    std::int64_t m_size;
    std::int64_t m_codedLeft = largestCoded;
    std::optional<QByteArray> m_decoded;
};

bool isFrameId(std::span<const char> id)
{
    return std::all_of(id.begin(), id.end(), [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

/// One frame: where its content stands, and whether it can be read as it stands there.
struct Frame {
    std::string id;
    std::int64_t position = 0;
    std::int64_t length = 0;
    std::int64_t end = 0;
    bool isReadable = true; ///< neither compressed nor encrypted
    bool isUnsynchronised = false;
};

std::int64_t frameSize(Bytes &bytes, std::int64_t position, unsigned version)
{
    if (version < 3) {
        return number(bytes.at(position + 3, 3), 8);
    }
    const std::uint32_t plain = number(bytes.at(position + 4, 4), 8);
    const std::uint32_t sevenBit = number(bytes.at(position + 4, 4), 7);
    if (version == 3 || plain == sevenBit) {
        return plain;
    }
    // Some writers put plain numbers where version 4 wants seven bits a byte: then the next frame, or the end, is
    // there.
    const auto isBoundary = [&](std::int64_t next) {
        const std::span<const char> id = bytes.at(next, 4);
        return next == bytes.size() || (id.size() == 4 && (isFrameId(id) || id[0] == '\0'));
    };
    return (plain & 0x80808080U) != 0 || (!isBoundary(position + 10 + sevenBit) && isBoundary(position + 10 + plain))
        ? plain
        : sevenBit;
}

std::optional<Frame> frameAt(Bytes &bytes, std::int64_t position, unsigned version, bool isTagUnsynchronised)
{
    const std::int64_t headerSize = version < 3 ? 6 : 10;
    const std::int64_t idSize = version < 3 ? 3 : 4;
    const std::span<const char> header = bytes.at(position, headerSize);
    if (std::int64_t(header.size()) < headerSize) {
        return std::nullopt;
    }
    Frame frame;
    frame.id.assign(header.data(), std::size_t(idSize));
    if (frame.id.back() == '\0' && idSize == 4) { // iTunes puts version 2's identifiers into version 3's tags
        frame.id.pop_back();
    }
    const unsigned flags = byteAt(header, 9);
    if (!isFrameId(frame.id)) {
        return std::nullopt;
    }
    frame.position = position + headerSize;
    frame.end = frame.position + frameSize(bytes, position, version);
    if (version == 3) {
        frame.isReadable = (flags & 0xC0) == 0;
        frame.position += (flags & 0x20) != 0 ? 1 : 0; // the group's number
    } else if (version > 3) {
        frame.isReadable = (flags & 0x0C) == 0;
        frame.isUnsynchronised = isTagUnsynchronised || (flags & 0x02) != 0;
        frame.position
            += ((flags & 0x40) != 0 ? 1 : 0) + ((flags & 0x01) != 0 ? 4 : 0); // the same, and a decoded length
    }
    frame.length = frame.end - frame.position;
    return frame;
}

QStringList texts(std::span<const char> content)
{
    if (content.empty()) {
        return {};
    }
    static constexpr QStringConverter::Encoding encodings[]
        = {QStringConverter::Latin1, QStringConverter::Utf16, QStringConverter::Utf16BE, QStringConverter::Utf8};
    QStringDecoder decoder(encodings[std::min<std::size_t>(byteAt(content, 0), 3)]);
    const QString whole = decoder.decode(QByteArrayView(content.data() + 1, qsizetype(content.size()) - 1));
    QStringList values = whole.split(QChar(u'\0'), Qt::SkipEmptyParts);
    for (QString &value : values) {
        value.remove(QChar(QChar::ByteOrderMark)); // each value may begin with its own
    }
    return values;
}

/// The length of a text with its terminator at the start of `content`, in the given encoding.
std::optional<std::size_t> terminatedLength(std::span<const char> content, unsigned encoding)
{
    const std::size_t unit = encoding == 1 || encoding == 2 ? 2 : 1;
    for (std::size_t i = 0; i + unit <= content.size(); i += unit) {
        if (content[i] == '\0' && content[i + unit - 1] == '\0') {
            return i + unit;
        }
    }
    return std::nullopt;
}

/// Where the picture's bytes begin in the content of an "APIC" or "PIC" frame; absent for a link to a picture.
struct PictureStart {
    std::size_t offset = 0;
    bool isFrontCover = false;
};

std::optional<PictureStart> pictureStart(std::span<const char> content, bool isShortForm)
{
    const unsigned encoding = byteAt(content, 0);
    const std::span<const char> rest = content.subspan(std::min<std::size_t>(1, content.size()));
    const std::optional<std::size_t> typeLength
        = isShortForm ? std::optional<std::size_t>(3) : terminatedLength(rest, 0);
    if (!typeLength || *typeLength + 1 > rest.size() || std::string_view(rest.data(), rest.size()).starts_with("-->")) {
        return std::nullopt;
    }
    const std::optional<std::size_t> description = terminatedLength(rest.subspan(*typeLength + 1), encoding);
    if (!description) {
        return std::nullopt;
    }
    return PictureStart {1 + *typeLength + 1 + *description, byteAt(rest, *typeLength) == frontCover};
}

class Reader {
public:
    Reader(BoundedStream &stream, const Id3v2Body &body)
        : m_bytes(stream, body)
        , m_version(body.version)
        , m_flags(body.flags)
    {
    }

    [[nodiscard]] Content read()
    {
        const bool isUnsynchronised = (m_flags & tagUnsynchronised) != 0;
        if (m_version <= 3 && isUnsynchronised) {
            m_bytes.decode();
        }
        std::int64_t position = 0;
        if ((m_flags & tagHasExtendedHeader) != 0 && m_version >= 3) {
            position = m_version == 3 ? 4 + std::int64_t(number(m_bytes.at(0, 4), 8)) : number(m_bytes.at(0, 4), 7);
        }
        for (int frames = 0; frames < mostFrames; ++frames) {
            const std::optional<Frame> frame = frameAt(m_bytes, position, m_version, isUnsynchronised);
            if (!frame || frame->end > m_bytes.size()) {
                break;
            }
            if (frame->isReadable && frame->length > 0) {
                take(*frame);
            }
            position = frame->end;
        }
        return std::move(m_content);
    }

private:
    void take(const Frame &frame)
    {
        if (frame.id == TagId::picture || frame.id == "PIC") {
            takePicture(frame);
            return;
        }
        // Version 4 has TDRC in place of TYER, which it may still hold.
        const bool isYear = frame.id == "TYER" && !m_hasDate;
        m_hasDate = m_hasDate || frame.id == TagId::date;
        const std::span<const TextField> fields = textFields();
        const auto field = std::find_if(fields.begin(), fields.end(), [&](const TextField &known) {
            return frame.id == known.identifier || frame.id == known.id3v22
                || (isYear && known.identifier == TagId::date);
        });
        if (field == fields.end() || frame.length > std::int64_t(BoundedStream::window)) {
            return;
        }
        if (frame.isUnsynchronised) {
            const QByteArray plain = resynchronised(m_bytes.copy(frame.position, frame.length));
            m_content.texts.push_back(textItem(*field, texts({plain.constData(), std::size_t(plain.size())})));
        } else {
            m_content.texts.push_back(textItem(*field, texts(m_bytes.at(frame.position, frame.length))));
        }
    }

    void takePicture(const Frame &frame)
    {
        const bool isShortForm = frame.id.size() == 3;
        if (frame.isUnsynchronised) {
            const QByteArray coded = m_bytes.copy(frame.position, frame.length);
            if (coded.size() < frame.length) {
                return;
            }
            const QByteArray plain = resynchronised(coded);
            if (const auto start = pictureStart({plain.constData(), std::size_t(plain.size())}, isShortForm)) {
                m_content.pictures.push_back(
                    {.isFrontCover = start->isFrontCover, .own = plain.mid(qsizetype(start->offset))});
            }
        } else if (const auto start
            = pictureStart(m_bytes.at(frame.position, std::min(frame.length, longestPictureHeader)), isShortForm)) {
            const auto offset = std::int64_t(start->offset);
            m_content.pictures.push_back(
                m_bytes.picture(frame.position + offset, frame.length - offset, start->isFrontCover));
        }
    }

    Bytes m_bytes;
    unsigned m_version;
    unsigned m_flags;
    bool m_hasDate = false;
    Content m_content;
};

} // namespace

Content read(BoundedStream &stream, const Id3v2Body &body)
{
    return Reader(stream, body).read();
}

} // namespace Id3v2
