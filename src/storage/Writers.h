// The writers that never leave a half-written file under a final name and never overwrite one by accident.
//
// Blocking until the medium has the bytes, unless the caller lets this wait; any thread but the UI's. Failures are the
// system's own.
#pragma once

#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <fcntl.h>

#include <filesystem>
#include <functional>

namespace Storage {

/// Copies what is still to be read of `source` to a name that must not exist, in blocks of 1 MiB. Neither times nor
/// other attributes are copied. A relative destination is counted from the open folder `from`. On failure the
/// incomplete destination stays: the caller holds its name and removes it.
void copyToNew(const Files::Descriptor &source, const std::filesystem::path &destination, int from = AT_FDCWD,
    Files::Durability durability = Files::Durability::Now);

/// The same of a whole file; links to it are followed.
void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination, int from = AT_FDCWD);

/// Removes the file `name` if `mayGo`, asked right before, says so; its failure, too, leaves the file. Nothing is made
/// or renamed, so this works on a full disk. What another program puts there between the look and the removal is lost:
/// no system has one call for both.
[[nodiscard]] bool removeIf(
    const Files::Folder &folder, const std::filesystem::path &name, const std::function<bool()> &mayGo);

} // namespace Storage
