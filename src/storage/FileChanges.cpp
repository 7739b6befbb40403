#include "storage/FileChanges.h"

#include "storage/Device.h"
#include "storage/Writers.h"

#include "platform/DiskCalls.h"
#include "platform/MarluneError.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

void removeIfThere(const std::filesystem::path &file)
{
    if (diskCalls().unlink(file.c_str()) != 0 && errno != ENOENT) {
        Files::throwFailure(errno, file);
    }
}

} // namespace

namespace Storage {

FileChanges::FileChanges(std::filesystem::path root, CopyOf copyOf, Files::Durability durability)
    : m_root(std::move(root))
    , m_disk(::open(m_root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC))
    , m_copyOf(std::move(copyOf))
    , m_durability(durability)
{
}

FileChanges::~FileChanges()
{
    (void)undo();
}

void FileChanges::undoAndRethrow(const std::filesystem::path &copies)
{
    const std::exception_ptr failure = std::current_exception();
    if (undo()) {
        std::rethrow_exception(failure);
    }
    throw MarluneError(describeFailure(failure) + QStringLiteral("\n\nKopia: ") + Files::text(copies));
}

/// False if that failed for a file, or if the medium may not have all of it.
bool FileChanges::undo() noexcept
{
    bool complete = true;
    const auto attempt = [&complete](const auto &work) {
        try {
            work();
        } catch (const std::exception &) { // the failure that led here is the one to report
            complete = false;
        }
    };
    // Exactly in reverse: then each old file finds the room on a full disk that its successor was given.
    std::for_each(
        m_tried.rbegin(), m_tried.rend(), [&](const std::filesystem::path &file) { attempt([&] { putBack(file); }); });
    attempt([this] { synchronise(); });
    m_tried.clear();
    return complete;
}

void FileChanges::requireSameDisk() const
{
    struct stat held {};
    struct stat present {};
    if (::fstat(m_disk.get(), &held) != 0 || ::stat(m_root.c_str(), &present) != 0 || held.st_dev != present.st_dev) {
        Files::throwFailure(ENODEV, m_root);
    }
}

// The change of a file that was there is noted before it is tried: a call can fail after the disk has done its work.

void FileChanges::write(const QByteArray &bytes, const std::filesystem::path &file)
{
    (void)Device::inspect(m_root);
    requireSameDisk();
    if (m_copyOf(file)) {
        m_tried.push_back(file);
        writeBytes(bytes, file, m_durability);
    } else {
        create(bytes, file);
    }
}

/// Replaces nothing: what another program has put there since has no copy, and undoing must not remove it.
void FileChanges::create(const QByteArray &bytes, const std::filesystem::path &file)
{
    try {
        Files::createAtomically(file, bytes, m_durability);
    } catch (const std::system_error &failure) {
        if (failure.code() != std::errc::file_exists && Files::readBelow(file, bytes.size() + 1) == bytes) {
            m_tried.push_back(file); // the last call failed after its work was done
        }
        throw;
    }
    m_tried.push_back(file);
}

void FileChanges::remove(const std::filesystem::path &file)
{
    (void)Device::inspect(m_root);
    requireSameDisk();
    m_tried.push_back(file);
    if (diskCalls().unlink(file.c_str()) != 0) {
        Files::throwFailure(errno, file);
    }
}

void FileChanges::keep()
{
    synchronise();
    m_tried.clear();
}

void FileChanges::synchronise() const
{
    if (!m_tried.empty()) { // the names, even where each file is there already
        Files::synchroniseVolume(Files::exists(m_tried.back()) ? m_tried.back() : m_root);
    }
}

void FileChanges::putBack(const std::filesystem::path &file) const
{
    requireSameDisk();
    if (const std::optional<std::filesystem::path> copy = m_copyOf(file)) {
        copyOver(*copy, file, m_durability);
    } else {
        removeIfThere(file);
    }
}

} // namespace Storage
