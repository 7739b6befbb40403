// What a folder holds. Blocking; no state; any thread but the UI's. Failures are std::system_error.
#pragma once

#include "platform/files/Files.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Files {

/// Opens a folder, `path` counted from the open folder `from`. A link at its last name is refused with the system's
/// failure, as is what is no folder; one on the way is followed.
[[nodiscard]] Folder openFolder(const std::filesystem::path &path, int from = AT_FDCWD);

struct FolderItem {
    std::string name;
    Kind kind = Kind::None; ///< a link is not followed; None for what has gone meanwhile or is not described

    bool operator==(const FolderItem &) const = default;
};

/// What to do about an item that the disk lists and then does not describe.
enum class Undescribed : std::uint8_t { Throw, None };
/// All that the open folder holds, hidden items too, in the disk's order. Listed before any of it is worked on,
/// because a folder that changes while it is read may leave out items.
[[nodiscard]] std::vector<FolderItem> itemsOf(const Folder &folder, Undescribed undescribed = Undescribed::Throw);
/// The same for those who show what there is: a link to the folder is followed, what cannot be read is missing, and
/// what is not described is None. Never throws.
[[nodiscard]] std::vector<FolderItem> readableItemsOf(const std::filesystem::path &folder);
[[nodiscard]] std::vector<FolderItem> readableItemsOf(const Descriptor &folder);
/// Opens a folder for that; without a number where that cannot be. A link to one is followed.
[[nodiscard]] Descriptor readableFolder(const std::filesystem::path &folder);

} // namespace Files
