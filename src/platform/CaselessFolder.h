// The items of one folder, found by their names without regard to case, as FAT and the firmware find them.
//
// The names are those at the moment when it was made. To make one blocks; any thread. A folder that cannot be read has
// no items.
#pragma once

#include <QHash>
#include <QString>

#include <filesystem>
#include <vector>

class CaselessFolder {
public:
    CaselessFolder() = default;
    explicit CaselessFolder(std::filesystem::path folder);

    /// Where the items of this name are: first the one that is spelled exactly so, then the others in text order.
    [[nodiscard]] std::vector<std::filesystem::path> named(const std::filesystem::path &name) const;

private:
    std::filesystem::path m_folder;
    QHash<QString, std::vector<std::filesystem::path>> m_names; ///< by what they are without regard to case
};
