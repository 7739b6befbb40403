// The items of one folder, found by their names without regard to case, as FAT and the firmware find them.
//
// The names are those at the moment of the first question, which blocks. One thread at a time. A folder that cannot be
// read has no items.
#pragma once

#include <QHash>
#include <QString>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

class CaselessFolder {
public:
    CaselessFolder() = default;
    explicit CaselessFolder(std::filesystem::path folder)
        : m_folder(std::move(folder))
    {
    }
    /// Of these names alone: nothing is asked of the disk.
    CaselessFolder(std::filesystem::path folder, const std::vector<std::string> &names);

    /// Whether it is known to hold nothing.
    [[nodiscard]] bool isEmpty() const { return m_names && m_names->isEmpty(); }
    [[nodiscard]] const std::filesystem::path &folder() const { return m_folder; }
    /// Where the items of this name are: first the one that is spelled exactly so, then the others in text order.
    [[nodiscard]] std::vector<std::filesystem::path> named(const std::filesystem::path &name) const;

private:
    using Names = QHash<QString, std::vector<std::filesystem::path>>;
    [[nodiscard]] Names list() const;

    std::filesystem::path m_folder;
    mutable std::optional<Names> m_names; ///< by what they are without regard to case
};
