// Finds and removes the companion files in which macOS keeps a file's extended attributes on a FAT disk.
//
// Beside "song.flac" lies "._song.flac", which the firmware takes for a track. Only what is surely such a companion
// is touched, no link is followed, and nothing is deleted before copies of all of it are on the computer. A file that
// is no longer what was copied stays. Blocking; no state; any thread but the UI's. Failures are the device's anchor's
// or the system's.
#pragma once

#include "storage/DeviceAnchor.h"

#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace Storage {

/// The companions in the folders directly under the root whose names begin with "music" in any case, at any depth, in
/// the order found: regular files named "._NAME" beside an item NAME that is no link, with the head of an AppleDouble
/// file (RFC 1740). What cannot be read is passed over. Once `stop` is requested, these are not all of them.
[[nodiscard]] std::vector<std::filesystem::path> macMetadataFiles(
    const DeviceAnchor &device, const std::stop_token &stop = {});

struct MacCleanup {
    int removed = 0; ///< files
    bool isStopped = false; ///< before it was through
};

/// Copies the companions to a new folder "MacMetadata-UUID" with a manifest under `backupRoot`, then removes them from
/// the device; without any it makes no folder. With `candidates` only the companions of these files
/// of the device are looked at, whether the files exist or not. A failure while copying leaves all of them on the
/// device, a later one those that were not yet removed; so does `stop`, and no copies are left of files that all stay.
MacCleanup cleanupMacMetadata(const DeviceAnchor &device, const std::filesystem::path &backupRoot,
    std::optional<std::span<const std::filesystem::path>> candidates = std::nullopt, const std::stop_token &stop = {});

} // namespace Storage
