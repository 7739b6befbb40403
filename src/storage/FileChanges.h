// Files of one device written and removed together: all of the changes stay, or all are taken back.
//
// What is not kept by keep() is undone in reverse when the object goes, so every way out by an exception leaves the old
// files. Blocking; one object belongs to one thread, any but the UI's.
#pragma once

#include "platform/Files.h"

#include <QByteArray>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace Storage {

class FileChanges {
public:
    /// The copy, made before the first change, of what stood at this path; absent if nothing stood there.
    using CopyOf = std::function<std::optional<std::filesystem::path>(const std::filesystem::path &)>;

    /// With Durability::Later the medium gets all of the changes together, in keep(): quick for many small files.
    FileChanges(std::filesystem::path root, CopyOf copyOf, Files::Durability durability = Files::Durability::Now);
    /// Undoes what was not kept: puts each file's copy back in one step, removes what was new. A file for which that
    /// fails is left as it is, and the next one is tried.
    ~FileChanges();
    FileChanges(const FileChanges &) = delete;
    FileChanges &operator=(const FileChanges &) = delete;

    /// Both look at the device again first, and refuse another one at its place. They throw its MarluneError or the
    /// system's failure. A file without a copy must not be there: the write fails with EEXIST where one has appeared.
    void write(const QByteArray &bytes, const std::filesystem::path &file);
    void remove(const std::filesystem::path &file);

    /// For a failure that is being handled: undoes now what was not kept, and throws the failure on. Where not all
    /// could be undone it is a MarluneError whose text goes on with the folder `copies`, in which the old files are.
    [[noreturn]] void undoAndRethrow(const std::filesystem::path &copies);

    /// From here on the changes stay. Returns when all of them are on the medium; throws the system's failure where
    /// that cannot be had.
    void keep();

private:
    void requireSameDisk() const;
    void create(const QByteArray &bytes, const std::filesystem::path &file);
    [[nodiscard]] bool undo() noexcept;
    void putBack(const std::filesystem::path &file) const;
    void synchronise() const;

    std::filesystem::path m_root;
    Files::Descriptor m_disk; ///< keeps its number from going to another disk at the same place
    CopyOf m_copyOf;
    Files::Durability m_durability;
    std::vector<std::filesystem::path> m_tried;
};

} // namespace Storage
