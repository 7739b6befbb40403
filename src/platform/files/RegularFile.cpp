#include "platform/files/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

thread_local std::uint64_t refusedHere = 0;

} // namespace

std::uint64_t RegularFile::refusals()
{
    return refusedHere;
}

RegularFile RegularFile::openOrThrow(const std::filesystem::path &path)
{
    ++refusedHere; // until it is open
    Files::Descriptor descriptor = Files::openForReading(path);
    struct stat status {};
    if (::fstat(descriptor.get(), &status) != 0) {
        Files::throwFailure(errno, path);
    }
    --refusedHere;
    return {std::move(descriptor), status.st_size};
}

std::optional<RegularFile> RegularFile::open(const std::filesystem::path &path)
{
    try {
        return openOrThrow(path);
    } catch (const std::system_error &) {
        return std::nullopt;
    }
}

void RegularFile::expect(Reading reading) const
{
    const int advice = reading == Reading::Onward ? POSIX_FADV_NORMAL : POSIX_FADV_RANDOM;
    (void)::posix_fadvise(m_descriptor.get(), 0, 0, advice); // without it all goes well too
}

std::size_t RegularFile::readAt(std::int64_t position, std::span<char> buffer) const
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::pread(
            m_descriptor.get(), buffer.data() + filled, buffer.size() - filled, position + std::int64_t(filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            m_failure = std::error_code(errno, std::generic_category());
            ++refusedHere;
        }
        if (count <= 0) {
            break;
        }
        filled += std::size_t(count);
    }
    return filled;
}

FileWindow::FileWindow(const RegularFile &file, std::size_t capacity, std::size_t kept)
    : m_file(file)
    , m_capacity(capacity)
    , m_kept(kept)
    , m_bytes(std::make_unique_for_overwrite<char[]>(capacity))
{
}

std::span<const char> FileWindow::at(std::int64_t position, std::size_t length)
{
    length = std::min(length, m_capacity - m_kept);
    const bool isHeld = position >= m_start && position + std::int64_t(length) <= m_start + std::int64_t(m_length);
    if (!isHeld) {
        m_start = std::max<std::int64_t>(0, position - std::int64_t(m_kept));
        m_length = m_file.readAt(m_start, {m_bytes.get(), m_capacity});
    }
    const std::size_t offset = std::min(std::size_t(position - m_start), m_length);
    return {m_bytes.get() + offset, std::min(length, m_length - offset)};
}
