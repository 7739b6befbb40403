#include "storage/FileChanges.h"

#include "storage/Digest.h"
#include "storage/Writers.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

Sha256::Digest digestOf(const QByteArray &bytes)
{
    Sha256 sha256;
    sha256.update(bytes);
    return sha256.finish();
}

} // namespace

namespace Storage {

FileChanges::FileChanges(const DeviceAnchor &device, CopyOf copyOf, Files::Durability durability)
    : m_device(device)
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
        m_changes.rbegin(), m_changes.rend(), [&](const Change &change) { attempt([&] { putBack(change); }); });
    attempt([this] { sync(); });
    m_changes.clear();
    return complete;
}

bool FileChanges::equalsCopy(const std::filesystem::path &file, const Files::Folder &folder) const
{
    const std::optional<std::filesystem::path> copy = m_copyOf(file);
    return copy && digest(file.filename(), folder.descriptor.get()) == digest(*copy);
}

/// Throws where a file by this name would be lost.
void FileChanges::requireSaved(const std::filesystem::path &file, const Files::Folder &folder) const
{
    switch (Files::kindOf(file.filename(), folder.descriptor.get())) {
    case Files::Kind::None:
        return;
    case Files::Kind::File:
        break;
    case Files::Kind::Link:
        throw MarluneError(QStringLiteral("Docelowy zasób jest dowiązaniem."));
    default:
        Files::throwFailure(EISDIR, file);
    }
    if (!m_copyOf(file)) {
        throw MarluneError(QStringLiteral("Na iPodzie pojawił się plik bez kopii: ") + Files::name(file));
    }
    if (!equalsCopy(file, folder)) {
        throw MarluneError(QStringLiteral("Plik na iPodzie zmienił się po zrobieniu kopii: ") + Files::name(file));
    }
}

// The last look comes right before the step that cannot be taken back. A change is noted before it is tried: a call can
// fail after the disk has done its work.

void FileChanges::write(const QByteArray &bytes, const std::filesystem::path &file, DeviceAnchor::Missing folders)
{
    (void)m_device.require();
    const Files::Folder folder = m_device.folderOf(file, folders);
    const std::filesystem::path name = file.filename();
    const bool isThere = Files::kindOf(name, folder.descriptor.get()) != Files::Kind::None;
    const std::size_t before = m_changes.size();
    const auto make = [&](const std::filesystem::path &temporary, int from) {
        Files::writeNew(temporary, bytes, m_durability, from);
        requireSaved(file, folder);
        m_changes.push_back({file, digestOf(bytes)});
    };
    try {
        Files::place(folder, name, isThere ? Files::Placing::Replace : Files::Placing::Create, make);
    } catch (const std::system_error &failure) {
        if (failure.code() == std::errc::file_exists) { // another program's, be it of the same bytes
            m_changes.resize(before);
        }
        throw;
    }
}

void FileChanges::remove(const std::filesystem::path &file)
{
    (void)m_device.require();
    const Files::Folder folder = m_device.folderOf(file);
    (void)removeIf(folder, file.filename(), [&] {
        requireSaved(file, folder);
        m_changes.push_back({file, std::nullopt});
        return true;
    });
}

void FileChanges::keep()
{
    sync();
    m_changes.clear();
}

void FileChanges::sync() const
{
    if (!m_changes.empty()) { // the names, even where each file is there already
        const std::filesystem::path &last = m_changes.back().file;
        Files::syncVolume(m_device.folderOf(last), last.filename());
    }
}

void FileChanges::putBack(const Change &change) const
{
    const Files::Folder folder = m_device.folderOf(change.file);
    const std::filesystem::path name = change.file.filename();
    const auto isThere = [&] { return Files::kindOf(name, folder.descriptor.get()) != Files::Kind::None; };
    const auto requireOwn = [&] {
        if (isThere() && digest(name, folder.descriptor.get()) != change.made) {
            Files::throwFailure(EEXIST, change.file); // another program's
        }
    };
    if (isThere() && equalsCopy(change.file, folder)) {
        return; // it was never changed
    }
    if (const std::optional<std::filesystem::path> copy = m_copyOf(change.file)) {
        Files::place(folder, name, Files::Placing::Replace, [&](const std::filesystem::path &temporary, int from) {
            copyToNew(Files::openForReading(*copy), temporary, from, m_durability);
            requireOwn();
        });
    } else if (isThere()) {
        (void)removeIf(folder, name, [&] {
            requireOwn();
            return true;
        });
    }
}

} // namespace Storage
