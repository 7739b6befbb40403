// Whole folders copied and removed, walked from one open folder to the next: no link is ever followed, not even one
// that is planted while the walk is under way.
//
// Blocking; no state; any thread but the UI's.
#pragma once

#include "platform/files/FolderItems.h"

#include <filesystem>
#include <functional>
#include <stop_token>

namespace Storage {

/// Copies `name`, a file or a folder with all it holds, from the open folder `from` into the open folder `to`, where
/// the name must be free. Files keep their content and their time of change; owners and modes are not copied, so that
/// a copy can always be removed. Quick for thousands of small files: nothing is synced, that is the caller's.
/// Ends between two items once `stop` is requested, and the copy is incomplete.
/// Throws MarluneError at a link, otherwise std::system_error, also for what is neither file nor folder; what was
/// copied by then stays.
void copyTree(int from, const std::filesystem::path &name, int to, const std::stop_token &stop = {});

/// What a walk does about a folder that cannot be read, or an item that the disk does not describe.
enum class Unreadable : std::uint8_t { Throw, PassOver };
/// What a walk has come to. `folder`, open during the call, holds it under the last name of `path`.
struct TreeItem {
    std::filesystem::path path;
    Files::Kind kind = Files::Kind::None;
    int folder = -1;
};
using UseItem = std::function<void(const TreeItem &item)>;
/// Calls `use` with each item below `folder`, which is counted from the open folder `from`; hidden ones too, a folder
/// before what it holds. A few folders are open at a time, so that no depth uses up the descriptors. What goes
/// meanwhile is passed over; where a folder is moved that the walk is in, it throws ESTALE. Ends between two items once
/// `stop` is requested.
void forEachBelow(const std::filesystem::path &folder, Unreadable unreadable, const UseItem &use, int from = AT_FDCWD,
    const std::stop_token &stop = {});

/// Removes a folder with all it holds. What cannot be removed stays: this is for the way out of a failure.
void removeTree(const std::filesystem::path &folder);

} // namespace Storage
