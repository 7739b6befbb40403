#include "platform/files/Files.h"

#include "platform/files/DiskCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace Files {

void throwFailure(int error)
{
    throw std::system_error(error, std::generic_category());
}

void throwFailure(int error, const std::filesystem::path &path)
{
    throw std::filesystem::filesystem_error("disk", path, std::error_code(error, std::generic_category()));
}

bool exists(const std::filesystem::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

bool isDirectory(const std::filesystem::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

Kind kindOf(const std::filesystem::path &path, int from)
{
    struct stat status {};
    if (::fstatat(from, withoutSeparator(path).c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) {
            throwFailure(errno, path);
        }
        return Kind::None;
    }
    switch (status.st_mode & S_IFMT) {
    case S_IFREG:
        return Kind::File;
    case S_IFDIR:
        return Kind::Folder;
    case S_IFLNK:
        return Kind::Link;
    default:
        return Kind::Other;
    }
}

Kind kindOrNone(const std::filesystem::path &path, int from)
{
    try {
        return kindOf(path, from);
    } catch (const std::system_error &) {
        return Kind::None;
    }
}

std::optional<std::int64_t> size(const std::filesystem::path &path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return status.st_size;
}

Descriptor::Descriptor(Descriptor &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

int Descriptor::release()
{
    return std::exchange(m_descriptor, -1);
}

Descriptor openForReading(const std::filesystem::path &path, Links links, int from)
{
    struct stat status {};
    const auto requireRegular = [&] {
        if (!S_ISREG(status.st_mode)) {
            throwFailure(S_ISDIR(status.st_mode) ? EISDIR : S_ISLNK(status.st_mode) ? ELOOP : EINVAL, path);
        }
    };
    const bool follows = links == Links::Follow;
    // Asked before the opening, because to open a device can already do something to it, and once more after it,
    // because the name may mean another file by then: a pipe must not be waited for.
    if (::fstatat(from, path.c_str(), &status, follows ? 0 : AT_SYMLINK_NOFOLLOW) != 0) {
        throwFailure(errno, path);
    }
    requireRegular();
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (follows ? 0 : O_NOFOLLOW);
    Descriptor descriptor(::openat(from, path.c_str(), flags));
    if (descriptor.get() < 0 || ::fstat(descriptor.get(), &status) != 0) {
        throwFailure(errno, path);
    }
    requireRegular();
    return descriptor;
}

std::size_t readFully(int descriptor, std::span<char> buffer)
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::read(descriptor, buffer.data() + filled, buffer.size() - filled);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throwFailure(errno);
        }
        if (count == 0) {
            break;
        }
        filled += std::size_t(count);
    }
    return filled;
}

QByteArray readWhole(const std::filesystem::path &path, std::int64_t limit)
{
    const Descriptor file = openForReading(path);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) {
        throwFailure(errno, path);
    }
    if (status.st_size >= limit) {
        throwFailure(EFBIG, path);
    }
    QByteArray bytes(status.st_size, Qt::Uninitialized);
    try {
        if (readFully(file.get(), {bytes.data(), std::size_t(bytes.size())}) < std::size_t(bytes.size())) {
            throwFailure(EIO);
        }
    } catch (const std::system_error &failure) {
        throwFailure(failure.code().value(), path);
    }
    return bytes;
}

std::optional<QByteArray> readBelow(const std::filesystem::path &path, std::int64_t limit)
{
    try {
        return readWhole(path, limit);
    } catch (const std::system_error &) {
        return std::nullopt;
    }
}

} // namespace Files
