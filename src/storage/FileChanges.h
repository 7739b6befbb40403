// Files of one device written and removed together: all of the changes stay, or all are taken back.
//
// What is not kept by keep() is undone in reverse when the object goes, so every way out by an exception leaves the old
// files. Each step, forward or back, opens its folder anew from the device's root and works in there: no link is
// followed, and no other disk is touched. Nothing that another program has put there is lost: what does not equal its
// copy is not replaced, nor is what appears at a name that was free, and what is not the file made here is not taken
// back. Blocking; one object belongs to one thread, any but the UI's.
#pragma once

#include "storage/DeviceAnchor.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"
#include "platform/files/Sha256.h"

#include <QByteArray>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace Storage {

/// A failure after which not all could be put back. Whatever else is going on, the user has to see its text: it alone
/// says where the old files are.
class UndoFailure : public MarluneError {
public:
    using MarluneError::MarluneError;
};

class FileChanges {
public:
    /// The copy, made before the first change, of the file that was at this path; absent if there was none.
    using CopyOf = std::function<std::optional<std::filesystem::path>(const std::filesystem::path &)>;

    /// `device` must have been taken before the copies were made, and must outlive the object. With Durability::Later
    /// the medium gets all of the changes together, in keep(): quick for many small files.
    FileChanges(const DeviceAnchor &device, CopyOf copyOf, Files::Durability durability = Files::Durability::Now);
    FileChanges(DeviceAnchor &&, CopyOf, Files::Durability = Files::Durability::Now) = delete;
    /// Undoes what was not kept: puts each file's copy back in one step, removes what was new. A file for which that
    /// fails is left as it is, and the next one is tried.
    ~FileChanges();
    FileChanges(const FileChanges &) = delete;
    FileChanges &operator=(const FileChanges &) = delete;

    /// Both take paths below the device's root and look at the device again first. They throw a MarluneError or the
    /// system's failure; a link, a file that has no copy and one that has changed since are refused.
    void write(const QByteArray &bytes, const std::filesystem::path &file,
        DeviceAnchor::Missing folders = DeviceAnchor::Missing::Refuse);
    void remove(const std::filesystem::path &file);

    /// For a failure that is being handled: undoes now what was not kept, and throws the failure on. Where not all
    /// could be undone it is an UndoFailure whose text goes on with the folder `copies`, in which the old files are.
    [[noreturn]] void undoAndRethrow(const std::filesystem::path &copies);

    /// From here on the changes stay. Returns when all of them are on the medium; throws the system's failure where
    /// that cannot be had.
    void keep();

private:
    struct Change {
        std::filesystem::path file;
        std::optional<Sha256::Digest> made; ///< of the new file; absent for one that was removed
    };

    Files::Placing requireSaved(const std::filesystem::path &file, const Files::Folder &folder) const;
    Files::Placing requireOwn(const Change &change, const Files::Folder &folder) const;
    [[nodiscard]] bool undo() noexcept;
    [[nodiscard]] bool putBack(const Change &change) const;
    void sync() const;

    const DeviceAnchor &m_device;
    CopyOf m_copyOf;
    Files::Durability m_durability;
    std::vector<Change> m_changes;
};

} // namespace Storage
