#include "media/files/OggReader.h"

#include "media/files/FlacBlocks.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace OggReader {

namespace {

using Kind = AudioContent::Kind;

constexpr std::size_t pageHeaderSize = 27;
constexpr std::uint64_t granuleOffset = 6; // in a page; the stream's serial number comes behind it
constexpr std::size_t maxPage = pageHeaderSize + 255 + 65'025; // 255 segments of 255 bytes
constexpr qsizetype maxCommentHeader = 16 << 20;
constexpr int maxPages = 20'000;
constexpr std::int64_t unknownPosition = -1;
constexpr int opusSampleRate = 48'000; // that of all positions and of the decoder, whatever was encoded

struct Page {
    std::int64_t granule = unknownPosition;
    std::uint32_t serial = 0;
    std::int64_t body = 0; ///< where the packets' bytes are
    std::int64_t end = 0;
    std::size_t firstPiece = 0; ///< bytes up to the end of the first packet that ends here, or of the page
    bool endsPacket = false;
};

ByteCursor cursorOn(std::string_view bytes)
{
    return {QByteArrayView(bytes.data(), qsizetype(bytes.size())), ByteOrder::Little};
}

template <typename Window> std::string_view viewAt(Window &window, std::int64_t position, std::size_t length)
{
    const std::span<const char> bytes = window.at(position, length);
    return {bytes.data(), bytes.size()};
}

template <typename Window> std::optional<Page> pageAt(Window &window, std::int64_t position)
{
    const std::string_view header = viewAt(window, position, pageHeaderSize + 255);
    if (header.size() < pageHeaderSize || !header.starts_with("OggS")) {
        return std::nullopt;
    }
    ByteCursor numbers = cursorOn(header).at(granuleOffset);
    Page page;
    page.granule = std::int64_t(numbers.number(8).value_or(0));
    page.serial = std::uint32_t(numbers.number(4).value_or(0));
    const std::size_t segments = static_cast<unsigned char>(header[pageHeaderSize - 1]);
    std::size_t length = 0;
    for (const char lacing : header.substr(pageHeaderSize, segments)) {
        length += static_cast<unsigned char>(lacing);
        if (!page.endsPacket) {
            page.firstPiece = length;
            page.endsPacket = static_cast<unsigned char>(lacing) < 255;
        }
    }
    page.body = position + std::int64_t(pageHeaderSize + segments);
    page.end = page.body + std::int64_t(length);
    return page;
}

std::optional<std::int64_t> lastGranuleIn(std::string_view tail, std::uint32_t serial)
{
    for (std::size_t end = tail.size(); end > 0;) {
        const std::size_t at = tail.rfind("OggS", end - 1);
        if (at == std::string_view::npos) {
            break;
        }
        ByteCursor cursor = cursorOn(tail.substr(at)).at(granuleOffset);
        const auto granule = std::int64_t(cursor.number(8).value_or(0));
        if (cursor.number(4) == serial && granule != unknownPosition) {
            return granule;
        }
        end = at;
    }
    return std::nullopt;
}

/// The last position in samples that the stream's pages name, looked for at the file's end. The last page is seldom
/// larger than a few KiB and never larger than maxPage.
std::optional<std::int64_t> lastGranule(BoundedStream &stream, std::uint32_t serial)
{
    const auto start
        = [&](std::size_t reach) { return std::max<std::int64_t>(0, stream.length() - std::int64_t(reach)); };
    if (const auto granule
        = lastGranuleIn(viewAt(stream, start(BoundedStream::window), BoundedStream::window), serial)) {
        return granule;
    }
    FileWindow window(stream.file(), 2 * maxPage, 0);
    return lastGranuleIn(viewAt(window, start(2 * maxPage), 2 * maxPage), serial);
}

/// The second packet of the stream that begins at `position`: the first has a page of its own.
QByteArray commentPacket(const RegularFile &file, std::int64_t position)
{
    FileWindow window(file, maxPage, 0);
    const std::optional<Page> first = pageAt(window, position);
    QByteArray packet;
    if (!first) {
        return packet;
    }
    position = first->end;
    for (int pages = 0; pages < maxPages; ++pages) {
        const std::optional<Page> page = pageAt(window, position);
        if (!page) {
            break;
        }
        if (page->serial == first->serial) {
            const std::string_view piece = viewAt(window, page->body, page->firstPiece);
            packet.append(piece.data(), qsizetype(piece.size()));
            if (page->endsPacket || packet.size() > maxCommentHeader) {
                break;
            }
        }
        position = page->end;
    }
    return packet;
}

/// Decodes base64 with padding; empty if a character does not belong there.
QByteArray fromBase64(QByteArrayView encoded)
{
    std::string_view text(encoded.data(), std::size_t(encoded.size()));
    static constexpr std::uint32_t invalid = 0x80000000;
    static constexpr auto values = [] {
        std::array<std::uint32_t, 256> table {};
        table.fill(invalid);
        std::uint32_t value = 0;
        for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")) {
            table[static_cast<unsigned char>(c)] = value++;
        }
        return table;
    }();
    const auto valueAt = [&](std::size_t i) { return values[static_cast<unsigned char>(text[i])]; };
    while (!text.empty() && text.back() == '=') {
        text.remove_suffix(1);
    }
    const std::size_t quads = text.size() / 4;
    const std::size_t left = text.size() % 4;
    QByteArray bytes(qsizetype(quads * 3 + (left > 1 ? left - 1 : 0)), Qt::Uninitialized);
    char *out = bytes.data();
    std::uint32_t seen = 0;
    const auto put = [&](std::uint32_t three, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            *out++ = static_cast<char>(three >> (16 - 8 * i));
        }
    };
    for (std::size_t i = 0; i < quads * 4; i += 4) {
        const std::uint32_t a = valueAt(i);
        const std::uint32_t b = valueAt(i + 1);
        const std::uint32_t c = valueAt(i + 2);
        const std::uint32_t d = valueAt(i + 3);
        seen |= a | b | c | d;
        put(a << 18 | b << 12 | c << 6 | d, 3);
    }
    std::uint32_t three = 0;
    for (std::size_t i = 0; i < left; ++i) {
        seen |= valueAt(quads * 4 + i);
        three |= valueAt(quads * 4 + i) << (18 - 6 * i);
    }
    put(three, left > 1 ? left - 1 : 0);
    return (seen & invalid) == 0 ? bytes : QByteArray();
}

std::optional<Picture> pictureOf(QByteArray block)
{
    const auto place = FlacBlocks::picturePlace(block, std::uint64_t(block.size()));
    if (!place || place->isLink) {
        return std::nullopt;
    }
    block.remove(0, qsizetype(place->offset));
    block.truncate(qsizetype(place->length));
    return Picture {.isFrontCover = place->isFrontCover, .own = std::move(block)};
}

bool isKey(QByteArrayView key, const char *upperCased)
{
    return key.compare(upperCased, Qt::CaseInsensitive) == 0;
}

/// Collects the values of each field under each of its names.
class Comments {
public:
    void add(QByteArrayView key, QByteArrayView value)
    {
        if (isKey(key, "METADATA_BLOCK_PICTURE")) {
            if (std::optional<Picture> picture = pictureOf(fromBase64(value))) {
                m_pictures.push_back(std::move(*picture));
            }
            return;
        }
        if (isKey(key, "COVERART")) { // what came before the picture block: the bare image
            m_pictures.push_back({.own = fromBase64(value)});
            return;
        }
        const std::span<const TextField> fields = textFields();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            for (std::size_t name = 0; name < fields[i].comments.size(); ++name) {
                if (fields[i].comments[name] != nullptr && isKey(key, fields[i].comments[name])) {
                    m_values[i][name].push_back(FlacBlocks::commentText(value));
                }
            }
        }
    }

    [[nodiscard]] std::vector<MetadataItem> take(const RegularFile &file)
    {
        std::vector<MetadataItem> items;
        const std::span<const TextField> fields = textFields();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const auto values = std::find_if(
                m_values[i].begin(), m_values[i].end(), [](const QStringList &list) { return !list.isEmpty(); });
            if (values != m_values[i].end()) {
                items.push_back(textItem(fields[i], *values));
            }
        }
        appendPictures(items, m_pictures, file);
        return items;
    }

private:
    std::array<std::array<QStringList, 2>, textFieldCount> m_values;
    std::vector<Picture> m_pictures;
};

} // namespace

MediaFacts facts(BoundedStream &stream, const AudioContent &content)
{
    const std::optional<Page> first = pageAt(stream, content.start);
    if (!first) {
        return {};
    }
    const bool isOpus = content.kind == Kind::OggOpus;
    // Vorbis: "\x01vorbis", version (4 bytes), channels (1), rate (4). Opus: "OpusHead", version, channels, pre-skip
    // (2).
    ByteCursor header = cursorOn(viewAt(stream, first->body, first->firstPiece)).at(isOpus ? 10 : 12);
    const std::optional<std::uint64_t> number = header.number(4);
    if (!number) {
        return {};
    }
    const std::int64_t skipped = isOpus ? std::int64_t(*number & 0xFFFF) : 0;
    const double sampleRate = isOpus ? opusSampleRate : double(*number);
    if (sampleRate <= 0) {
        return {};
    }
    const std::int64_t samples = lastGranule(stream, first->serial).value_or(0) - skipped;
    return {samples > 0 ? double(samples) / sampleRate : 0, AudioStream {sampleRate, 0, 0, 0}};
}

std::vector<MetadataItem> items(const RegularFile &file, const AudioContent &content)
{
    const QByteArray packet = commentPacket(file, content.start);
    const QByteArrayView magic = content.kind == Kind::OggOpus ? "OpusTags" : "\x03vorbis";
    Comments comments;
    if (packet.startsWith(magic)) {
        FlacBlocks::forEachComment(QByteArrayView(packet).sliced(magic.size()),
            [&comments](QByteArrayView key, QByteArrayView value) { comments.add(key, value); });
    }
    return comments.take(file);
}

} // namespace OggReader
