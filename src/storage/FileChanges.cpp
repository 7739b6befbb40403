#include "storage/FileChanges.h"

#include "storage/Device.h"
#include "storage/Writers.h"

#include "platform/DiskCalls.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace Storage {

FileChanges::FileChanges(std::filesystem::path root, CopyOf copyOf, Files::Durability durability)
    : m_root(std::move(root))
    , m_copyOf(std::move(copyOf))
    , m_durability(durability)
{
}

FileChanges::~FileChanges()
{
    // Exactly in reverse: then each old file finds the room on a full disk that its successor was given.
    std::for_each(m_tried.rbegin(), m_tried.rend(), [this](const std::filesystem::path &file) {
        try {
            putBack(file);
        } catch (const std::exception &) { // NOLINT(bugprone-empty-catch): the first failure is the one to report
        }
    });
    try {
        synchronise();
    } catch (const std::exception &) { // NOLINT(bugprone-empty-catch): as above
    }
}

// The change of a file that was there is noted before it is tried: a call can fail after the disk has done its work.

void FileChanges::write(const QByteArray &bytes, const std::filesystem::path &file)
{
    (void)Device::inspect(m_root);
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
        Files::createAtomically(file, {bytes.constData(), std::size_t(bytes.size())}, m_durability);
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
    m_tried.push_back(file);
    if (diskCalls().unlink(file.c_str()) != 0) {
        const std::error_code failure(errno, std::generic_category());
        throw std::filesystem::filesystem_error("unlink", file, failure);
    }
}

void FileChanges::keep()
{
    synchronise();
    m_tried.clear();
}

void FileChanges::synchronise() const
{
    if (m_durability == Files::Durability::Later && !m_tried.empty()) {
        Files::synchroniseVolume(Files::exists(m_tried.back()) ? m_tried.back() : m_root);
    }
}

void FileChanges::putBack(const std::filesystem::path &file) const
{
    if (const std::optional<std::filesystem::path> copy = m_copyOf(file)) {
        copyOver(*copy, file, m_durability);
    } else {
        diskCalls().unlink(file.c_str());
    }
}

} // namespace Storage
