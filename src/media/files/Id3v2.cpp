#include "media/files/Id3v2.h"

#include "platform/files/ByteCursor.h"

#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace Id3v2 {

namespace {

constexpr int maxFrames = 5000;
constexpr std::int64_t maxCoded = 16 << 20; // bytes of a tag that are decoded in memory
constexpr unsigned tagUnsynchronised = 0x80;
constexpr unsigned tagHasExtendedHeader = 0x40;
constexpr std::uint64_t frontCover = 3;
constexpr std::int64_t maxPictureHeader = 1024;

/// Takes out the zero that follows each byte 0xFF.
QByteArray resynced(const QByteArray &bytes)
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
    [[nodiscard]] QByteArrayView at(std::int64_t position, std::int64_t length)
    {
        const std::int64_t count = std::clamp<std::int64_t>(size() - position, 0, length);
        if (m_decoded) {
            return QByteArrayView(*m_decoded).sliced(std::min(position, size()), count);
        }
        const std::span<const char> bytes = m_stream.at(m_start + position, std::size_t(count));
        return {bytes.data(), qsizetype(bytes.size())};
    }
    [[nodiscard]] ByteCursor cursorAt(std::int64_t position, std::int64_t length)
    {
        return {at(position, length), ByteOrder::Big};
    }

    /// Cut short where the tag makes more than maxCoded bytes of copies necessary.
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

    /// The picture at this place, not read if it is in the file as it is.
    [[nodiscard]] Picture picture(std::int64_t position, std::int64_t length, bool isFrontCover)
    {
        if (m_decoded) {
            return {.isFrontCover = isFrontCover, .own = copy(position, length)};
        }
        return {.isFrontCover = isFrontCover, .inFile = {m_start + position, length}};
    }

    void decode()
    {
        m_decoded = resynced(copy(0, m_size));
        m_codedLeft = m_decoded->size(); // pieces of it do not overlap
    }

private:
    BoundedStream &m_stream;
    std::int64_t m_start;
    std::int64_t m_size;
    std::int64_t m_codedLeft = maxCoded;
    std::optional<QByteArray> m_decoded;
};

bool isFrameId(QByteArrayView id)
{
    return std::all_of(id.begin(), id.end(), [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

/// One frame: where its content is, and whether it can be read as it is there.
struct Frame {
    std::string id;
    std::int64_t position = 0;
    std::int64_t length = 0;
    std::int64_t end = 0;
    bool isReadable = true; ///< neither compressed nor encrypted
    bool isUnsynchronised = false;
};

/// `header` is behind the identifier of the frame at `position`.
std::optional<std::uint64_t> frameSize(ByteCursor &header, Bytes &bytes, std::int64_t position, unsigned version)
{
    if (version < 3) {
        return header.number(3);
    }
    const std::optional<std::uint64_t> sevenBit = ByteCursor(header).number(4, 7);
    const std::optional<std::uint64_t> plain = header.number(4);
    if (version == 3 || plain == sevenBit) {
        return plain;
    }
    // Some writers put plain numbers where version 4 wants seven bits a byte: then the next frame, or the end, is
    // there.
    const auto isBoundary = [&](std::uint64_t size) {
        const std::int64_t next = position + 10 + std::int64_t(size);
        const QByteArrayView id = bytes.at(next, 4);
        return next == bytes.size() || (id.size() == 4 && (isFrameId(id) || id[0] == '\0'));
    };
    return (*plain & 0x80808080U) != 0 || (!isBoundary(*sevenBit) && isBoundary(*plain)) ? plain : sevenBit;
}

std::optional<Frame> frameAt(Bytes &bytes, std::int64_t position, unsigned version, bool isTagUnsynchronised)
{
    const std::int64_t headerSize = version < 3 ? 6 : 10;
    // A copy: the size is found by a look at other places.
    const QByteArray held = bytes.at(position, headerSize).toByteArray();
    ByteCursor header(held, ByteOrder::Big);
    const std::optional<QByteArrayView> id = header.take(version < 3 ? 3 : 4);
    const std::optional<std::uint64_t> size = id ? frameSize(header, bytes, position, version) : std::nullopt;
    const std::optional<std::uint64_t> flags = version < 3 ? 0 : header.number(2);
    if (!size || !flags) {
        return std::nullopt;
    }
    Frame frame;
    frame.id.assign(id->data(), std::size_t(id->size()));
    if (frame.id.back() == '\0' && version >= 3) { // iTunes puts version 2's identifiers into version 3's tags
        frame.id.pop_back();
    }
    if (!isFrameId(frame.id)) {
        return std::nullopt;
    }
    frame.position = position + headerSize;
    frame.end = frame.position + std::int64_t(*size);
    if (version == 3) {
        frame.isReadable = (*flags & 0xC0) == 0;
        frame.position += (*flags & 0x20) != 0 ? 1 : 0; // the group's number
    } else if (version > 3) {
        frame.isReadable = (*flags & 0x0C) == 0;
        frame.isUnsynchronised = isTagUnsynchronised || (*flags & 0x02) != 0;
        frame.position
            += ((*flags & 0x40) != 0 ? 1 : 0) + ((*flags & 0x01) != 0 ? 4 : 0); // the same, and a decoded length
    }
    frame.length = frame.end - frame.position;
    return frame;
}

QStringList texts(QByteArrayView content)
{
    if (content.isEmpty()) {
        return {};
    }
    static constexpr QStringConverter::Encoding encodings[]
        = {QStringConverter::Latin1, QStringConverter::Utf16, QStringConverter::Utf16BE, QStringConverter::Utf8};
    QStringDecoder decoder(encodings[std::min<std::size_t>(static_cast<unsigned char>(content[0]), 3)]);
    const QString whole = decoder.decode(content.sliced(1));
    QStringList values = whole.split(QChar(u'\0'), Qt::SkipEmptyParts);
    for (QString &value : values) {
        value.remove(QChar(QChar::ByteOrderMark)); // each value may begin with its own
    }
    return values;
}

/// Takes a text with its terminator. False if it has none.
bool skipText(ByteCursor &cursor, std::uint64_t encoding)
{
    const std::size_t unit = encoding == 1 || encoding == 2 ? 2 : 1;
    std::optional<std::uint64_t> character;
    do {
        character = cursor.number(unit);
    } while (character.value_or(0) != 0);
    return character.has_value();
}

/// Where the picture's bytes begin in the content of an "APIC" or "PIC" frame; absent for a link to a picture.
struct PictureStart {
    std::uint64_t offset = 0;
    bool isFrontCover = false;
};

std::optional<PictureStart> pictureStart(QByteArrayView content, bool isShortForm)
{
    constexpr std::uint64_t latin1 = 0;
    constexpr std::uint64_t shortTypeLength = 3;
    ByteCursor cursor(content, ByteOrder::Big);
    const std::uint64_t encoding = cursor.number(1).value_or(latin1);
    const bool isLink = ByteCursor(cursor).skipText("-->");
    const bool hasType = isShortForm ? cursor.skip(shortTypeLength) : skipText(cursor, latin1);
    const std::optional<std::uint64_t> kind = cursor.number(1);
    if (isLink || !hasType || !kind || !skipText(cursor, encoding)) {
        return std::nullopt;
    }
    return PictureStart {cursor.position(), kind == frontCover};
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
            const std::uint64_t size = m_bytes.cursorAt(0, 4).number(4, m_version == 3 ? 8 : 7).value_or(0);
            position = std::int64_t(size) + (m_version == 3 ? 4 : 0);
        }
        for (int frames = 0; frames < maxFrames; ++frames) {
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
            const QByteArray plain = resynced(m_bytes.copy(frame.position, frame.length));
            m_content.texts.push_back(textItem(*field, texts(plain)));
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
            const QByteArray plain = resynced(coded);
            if (const auto start = pictureStart(plain, isShortForm)) {
                m_content.pictures.push_back(
                    {.isFrontCover = start->isFrontCover, .own = plain.mid(qsizetype(start->offset))});
            }
        } else if (const auto start
            = pictureStart(m_bytes.at(frame.position, std::min(frame.length, maxPictureHeader)), isShortForm)) {
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
