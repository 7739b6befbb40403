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
    throw UndoFailure(describeFailure(failure) + QStringLiteral("\n\nKopia: ") + Files::text(copies));
}

/// False if that failed for a file, or if the medium may not have all of it.
bool FileChanges::undo() noexcept
{
    bool complete = true;
    std::size_t untouched = 0;
    const auto attempt = [&complete](const auto &work) {
        try {
            work();
        } catch (const std::exception &) { // the failure that led here is the one to report
            complete = false;
        }
    };
    // Exactly in reverse: then each old file finds the room on a full disk that its successor was given.
    std::for_each(m_changes.rbegin(), m_changes.rend(),
        [&](const Change &change) { attempt([&] { untouched += putBack(change) ? 0 : 1; }); });
    if (untouched < m_changes.size()) {
        attempt([this] { sync(); });
    }
    m_changes.clear();
    return complete;
}

/// How a file may be given this name; throws where one that has it would be lost.
Files::Placing FileChanges::requireSaved(const std::filesystem::path &file, const Files::Folder &folder) const
{
    switch (Files::kindOf(file.filename(), folder.descriptor.get())) {
    case Files::Kind::None:
        return Files::Placing::Create;
    case Files::Kind::File:
        break;
    case Files::Kind::Link:
        throw MarluneError(QStringLiteral("Docelowy zasób jest dowiązaniem."));
    default:
        Files::throwFailure(EISDIR, file);
    }
    const std::optional<std::filesystem::path> copy = m_copyOf(file);
    if (!copy) {
        throw MarluneError(QStringLiteral("Na iPodzie pojawił się plik bez kopii: ") + Files::name(file));
    }
    if (digest(file.filename(), folder.descriptor.get()) != digest(*copy)) {
        throw MarluneError(QStringLiteral("Plik na iPodzie zmienił się po zrobieniu kopii: ") + Files::name(file));
    }
    return Files::Placing::Replace;
}

// The last look comes right before the step that cannot be taken back. A change is noted before it is tried: a call can
// fail after the disk has done its work.

void FileChanges::write(const QByteArray &bytes, const std::filesystem::path &file, DeviceAnchor::Missing folders)
{
    (void)m_device.require();
    const Files::Folder folder = m_device.folderOf(file, folders);
    const std::filesystem::path name = file.filename();
    const std::size_t before = m_changes.size();
    const auto make = [&](const std::filesystem::path &temporary, int from) {
        Files::writeNew(temporary, bytes, m_durability, from);
        const Files::Placing placing = requireSaved(file, folder);
        m_changes.push_back({file, digestOf(bytes)});
        return placing;
    };
    try {
        Files::place(folder, name, make);
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

/// The same for what is put back: what has the name may only be this object's own.
Files::Placing FileChanges::requireOwn(const Change &change, const Files::Folder &folder) const
{
    const std::filesystem::path name = change.file.filename();
    if (Files::kindOf(name, folder.descriptor.get()) == Files::Kind::None) {
        return Files::Placing::Create;
    }
    if (digest(name, folder.descriptor.get()) != change.made) {
        Files::throwFailure(EEXIST, change.file); // another program's
    }
    return Files::Placing::Replace;
}

/// False where there was nothing to do.
bool FileChanges::putBack(const Change &change) const
{
    const Files::Folder folder = m_device.folderOf(change.file);
    const std::filesystem::path name = change.file.filename();
    const int place = folder.descriptor.get();
    const std::optional<std::filesystem::path> copy = m_copyOf(change.file);
    if (!copy) {
        return removeIf(folder, name, [&] { return requireOwn(change, folder) == Files::Placing::Replace; });
    }
    const Sha256::Digest old = digest(*copy);
    if (Files::kindOf(name, place) != Files::Kind::None && digest(name, place) == old) {
        return change.made == old; // otherwise it was never changed
    }
    Files::place(folder, name, [&](const std::filesystem::path &temporary, int from) {
        copyToNew(Files::openForReading(*copy), temporary, from, m_durability);
        return requireOwn(change, folder);
    });
    return true;
}

} // namespace Storage
