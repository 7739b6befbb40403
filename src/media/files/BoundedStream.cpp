#include "media/files/BoundedStream.h"

#include <algorithm>

namespace {

constexpr std::int64_t maxBlock = 16 << 20;
constexpr std::uintptr_t deepestStack = 262'144;
constexpr unsigned long tagHeaderSize = 10;
constexpr unsigned long atomHeaderSize = 8;
constexpr std::size_t maxParts = 8; // ID3v2 tags, and atoms with covers

/// How far the calling function's stack frame is from other frames of the same thread.
[[gnu::always_inline]] inline std::uintptr_t stackPosition()
{
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

} // namespace

BoundedStream::BoundedStream(const RegularFile &file)
    : m_file(file)
    , m_stackBase(stackPosition())
{
}

bool BoundedStream::isExhausted() const
{
    const std::uintptr_t here = stackPosition();
    const std::uintptr_t depth = here < m_stackBase ? m_stackBase - here : here - m_stackBase;
    return m_blocksLeft <= 0 || m_bytesLeft <= 0 || depth > deepestStack;
}

BoundedStream::Window &BoundedStream::windowFor(std::int64_t position, std::size_t length)
{
    Window *oldest = &m_windows.front();
    bool isBackwards = false;
    for (Window &held : m_windows) {
        if (position >= held.start && position + std::int64_t(length) <= held.start + std::int64_t(held.length)) {
            return held;
        }
        isBackwards = isBackwards
            || (held.length > 0 && position < held.start && position + std::int64_t(length) >= held.start);
        oldest = held.lastUse < oldest->lastUse ? &held : oldest;
    }
    // TagLib searches the file's end backwards in small steps: then the window ends, and otherwise begins, at the
    // request.
    const std::int64_t last = std::max<std::int64_t>(0, m_file.size() - std::int64_t(window));
    const std::int64_t start = isBackwards ? position + std::int64_t(length) - std::int64_t(window) : position;
    oldest->start = std::min(position, std::clamp<std::int64_t>(start, 0, last));
    oldest->length = m_file.readAt(oldest->start, oldest->bytes);
    return *oldest;
}

std::span<const char> BoundedStream::at(std::int64_t position, std::size_t length)
{
    length = std::min(length, window);
    Window &held = windowFor(position, length);
    held.lastUse = ++m_uses;
    const std::size_t offset = std::min(std::size_t(position - held.start), held.length);
    return std::span<const char>(held.bytes).subspan(offset, std::min(length, held.length - offset));
}

TagLib::ByteVector BoundedStream::readBlock(unsigned long length)
{
    const std::int64_t left = std::max<std::int64_t>(0, m_file.size() - m_position);
    const auto wanted = std::int64_t(std::min<std::uint64_t>(length, std::uint64_t(left)));
    if (wanted == 0 || isExhausted() || isWithheld(length)) {
        return {};
    }
    const auto allowed = std::size_t(std::min({wanted, maxBlock, m_bytesLeft}));
    TagLib::ByteVector block;
    if (allowed <= window / 2) {
        const std::span<const char> bytes = at(m_position, allowed);
        block.setData(bytes.data(), unsigned(bytes.size()));
    } else {
        block.resize(unsigned(allowed));
        block.resize(unsigned(m_file.readAt(m_position, {block.data(), allowed})));
    }
    --m_blocksLeft;
    m_bytesLeft -= block.size();
    m_position += block.size();
    checkHeader(block, length);
    return block;
}

// TagLib reads an ID3v2 tag as ten bytes of header and then, from where these end, the whole body. It reads the
// headers of all atoms before it comes back for the content of one.
bool BoundedStream::isWithheld(unsigned long length)
{
    if (m_pendingTag.position == m_position) {
        m_pendingTag.length = std::int64_t(length);
        m_id3v2Bodies.push_back(m_pendingTag);
        m_pendingTag.position = -1;
        return true;
    }
    if (length > atomHeaderSize
        && std::find(m_coverHeaders.begin(), m_coverHeaders.end(), m_position) != m_coverHeaders.end()) {
        m_mp4CoverBodies.push_back({m_position, std::int64_t(length)});
        return true;
    }
    return false;
}

void BoundedStream::checkHeader(const TagLib::ByteVector &block, unsigned long length)
{
    m_pendingTag.position = -1;
    if (length == tagHeaderSize && block.size() == length && block.startsWith("ID3")
        && m_id3v2Bodies.size() < maxParts) {
        m_pendingTag
            = {m_position, 0, static_cast<unsigned char>(block.at(3)), static_cast<unsigned char>(block.at(5))};
    } else if (length == atomHeaderSize && block.containsAt("covr", 4) && m_coverHeaders.size() < maxParts) {
        m_coverHeaders.push_back(m_position);
    } else if (length > atomHeaderSize && block.containsAt("stsd", 4)) { // it reads the whole atom of the first sound
        m_mp4Descriptions = m_position - block.size() + std::int64_t(atomHeaderSize);
    }
}

void BoundedStream::seek(long offset, Position from)
{
    const long base = from == Beginning ? 0 : from == Current ? long(m_position) : long(m_file.size());
    long target = 0;
    // A position before the file's beginning moves nothing, as with lseek().
    if (!__builtin_add_overflow(base, offset, &target) && target >= 0) {
        m_position = target;
    }
}
