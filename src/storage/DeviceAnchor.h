// Holds on to the disk that a job works on, so that no other disk and no other folder is ever taken for it.
//
// A job that writes takes it before it reads anything. Held open, the disk's number cannot go to another one at the
// same place, and what is opened from here lies on this disk, whatever happens to the paths meanwhile. Blocking; one
// object may serve several threads, none of them the UI's.
#pragma once

#include "storage/Device.h"

#include "platform/files/Files.h"

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

namespace Storage {

class DeviceAnchor {
public:
    /// Throws as require() does, or the system's failure where the root cannot be opened.
    explicit DeviceAnchor(const std::filesystem::path &root);

    [[nodiscard]] const std::filesystem::path &root() const { return m_root; }

    /// Inspects the device anew. Throws Device::inspect's failures, and a MarluneError where its place by now leads to
    /// another disk or another folder.
    Device require() const;

    /// Whether another disk or another folder surely is at the root by now. False where nothing can be said.
    [[nodiscard]] bool isReplaced() const;

    enum class Missing : std::uint8_t { Refuse, Make };
    /// Opens the folder `relative` to the root one piece after the other and follows no link; "" is the root itself.
    /// The root must be where it was; before it makes something, the device is inspected. Pieces are made as they are:
    /// safeName() is the caller's duty. Folders made before a refusal stay. Throws MarluneError, or the system's
    /// failure; with Missing::Refuse that is ENOENT for a folder that is not there.
    [[nodiscard]] Files::Folder folder(const std::filesystem::path &relative, Missing missing = Missing::Refuse) const;
    /// The same for the folder that holds `file`, a path below the root.
    [[nodiscard]] Files::Folder folderOf(const std::filesystem::path &file, Missing missing = Missing::Refuse) const;

    /// Throws MarluneError or the system's failure where the path of a folder from here by now leads to another one.
    void requireUnmoved(const Files::Folder &folder) const;

private:
    [[nodiscard]] bool isAnother(const struct stat &present) const;
    void requireSamePlace() const;

    std::filesystem::path m_root;
    Files::Descriptor m_disk;
    struct stat m_identity {};
};

} // namespace Storage
