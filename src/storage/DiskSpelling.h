// How a disk spells its names where case does not count: a file has one name then, whatever letters it was asked for
// by.
//
// Blocking; an object belongs to one thread, any but the UI's.
#pragma once

#include "platform/volumes/Volumes.h"

#include <QString>

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace Storage {

class DiskSpelling {
public:
    /// For what lies below `root`, on a volume with these rules.
    DiskSpelling(std::filesystem::path root, Volumes::NameRules rules);

    /// `relative`, counted from the root, as the disk spells it; from a piece on that is not there, as it is. Folders
    /// are listed once, and again for a name that has come since. Throws the system's failure.
    [[nodiscard]] std::filesystem::path of(const std::filesystem::path &relative) const;

    /// Learns of a folder that was made after of() gave its name: without it, each of many new folders would have the
    /// one that holds them listed anew.
    void add(const std::filesystem::path &relative);

private:
    using Names = std::multimap<QString, std::string>; ///< by their keys, which are equal where case alone differs
    [[nodiscard]] std::filesystem::path pieceOf(
        const std::filesystem::path &folder, const std::filesystem::path &piece) const;
    [[nodiscard]] std::optional<std::string> known(
        const std::filesystem::path &folder, const std::filesystem::path &piece) const;
    [[nodiscard]] Names &namesIn(const std::filesystem::path &folder) const;

    std::filesystem::path m_root;
    Volumes::NameRules m_rules;
    mutable std::map<std::filesystem::path, Names> m_folders; ///< as they were when they were last listed
};

} // namespace Storage
