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

// A change is noted before it is tried: a call can fail after the disk has done its work.

void FileChanges::write(const QByteArray &bytes, const std::filesystem::path &file)
{
    (void)Device::inspect(m_root);
    m_tried.push_back(file);
    writeBytes(bytes, file, m_durability);
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
