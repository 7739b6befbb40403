#include "storage/DeviceAnchor.h"

#include "platform/MarluneError.h"
#include "platform/files/DiskCalls.h"

#include <fcntl.h>

#include <cerrno>

namespace {

constexpr int folderFlags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// Says what is in the way of the folder `path`, which could not be opened by its name in the open folder `from`.
[[noreturn]] void refuse(int error, int from, const std::filesystem::path &path)
{
    switch (Files::kindOf(path.filename(), from)) {
    case Files::Kind::Link:
        throw MarluneError(QStringLiteral("Ścieżka zawiera dowiązanie: ") + Files::name(path));
    case Files::Kind::File:
    case Files::Kind::Other:
        throw MarluneError(QStringLiteral("Folder jest zajęty przez plik: ") + Files::name(path));
    default:
        Files::throwFailure(error, path);
    }
}

/// Opens the last piece of `path` in the open folder `from`.
Files::Descriptor step(int from, const std::filesystem::path &path, Storage::DeviceAnchor::Missing missing)
{
    const std::filesystem::path piece = path.filename();
    if (piece == "." || piece == "..") {
        throw MarluneError(QStringLiteral("Nieprawidłowa ścieżka."));
    }
    int folder = ::openat(from, piece.c_str(), O_RDONLY | folderFlags);
    if (folder < 0 && errno == ENOENT && missing == Storage::DeviceAnchor::Missing::Make) {
        if (diskCalls().mkdirat(from, piece.c_str(), 0777) != 0 && errno != EEXIST) { // by another program, meanwhile
            Files::throwFailure(errno, path);
        }
        folder = ::openat(from, piece.c_str(), O_RDONLY | folderFlags);
    }
    if (folder < 0) {
        refuse(errno, from, path);
    }
    return Files::Descriptor(folder);
}

} // namespace

namespace Storage {

DeviceAnchor::DeviceAnchor(const std::filesystem::path &root)
    : m_root(Files::withoutSeparator(root))
    , m_disk(::open(m_root.c_str(), O_PATH | folderFlags))
{
    const int error = errno;
    if (m_disk.get() < 0) {
        (void)Device::inspect(m_root); // has better words for most of the reasons
        Files::throwFailure(error, m_root);
    }
    if (::fstat(m_disk.get(), &m_identity) != 0) {
        Files::throwFailure(errno, m_root);
    }
    (void)require();
}

Device DeviceAnchor::require() const
{
    Device device = Device::inspect(m_root);
    requireSamePlace();
    return device;
}

bool DeviceAnchor::isReplaced() const
{
    struct stat present {};
    return ::lstat(m_root.c_str(), &present) == 0 && isAnother(present);
}

bool DeviceAnchor::isAnother(const struct stat &present) const
{
    return present.st_dev != m_identity.st_dev || present.st_ino != m_identity.st_ino;
}

void DeviceAnchor::requireSamePlace() const
{
    struct stat present {};
    if (::lstat(m_root.c_str(), &present) != 0) {
        const int error = errno;
        (void)Device::inspect(m_root); // has better words
        Files::throwFailure(error, m_root);
    }
    if (isAnother(present)) {
        throw MarluneError(QStringLiteral("W miejscu iPoda jest teraz inny dysk lub folder. Podłącz iPoda ponownie."));
    }
}

Files::Folder DeviceAnchor::folder(const std::filesystem::path &relative, Missing missing) const
{
    missing == Missing::Make ? (void)require() : requireSamePlace();
    Files::Folder current {Files::Descriptor(::openat(m_disk.get(), ".", O_RDONLY | folderFlags)), m_root};
    if (current.descriptor.get() < 0) {
        Files::throwFailure(errno, m_root);
    }
    for (const std::filesystem::path &piece : relative.relative_path()) {
        if (!piece.empty()) {
            current.path /= piece;
            current.descriptor = step(current.descriptor.get(), current.path, missing);
        }
    }
    return current;
}

Files::Folder DeviceAnchor::folderOf(const std::filesystem::path &file, Missing missing) const
{
    return folder(file.lexically_relative(m_root).parent_path(), missing);
}

void DeviceAnchor::requireUnmoved(const Files::Folder &held) const
{
    const Files::Folder present = folder(held.path == m_root ? "" : held.path.lexically_relative(m_root));
    struct stat one {};
    struct stat other {};
    if (::fstat(held.descriptor.get(), &one) != 0 || ::fstat(present.descriptor.get(), &other) != 0
        || one.st_dev != other.st_dev || one.st_ino != other.st_ino) {
        throw MarluneError(
            QStringLiteral("Folder na iPodzie został w tym czasie zastąpiony: ") + Files::name(held.path));
    }
}

} // namespace Storage
