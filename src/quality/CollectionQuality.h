// What will disappoint about a collection on the device, and which of its files are identical. Reads, changes nothing.
//
// No state; blocking. inspect() opens no file and duplicates() reads files whole, which takes minutes on a device: both
// belong on a background thread, since even to ask for a file can hang with its disk.
#pragma once

#include "quality/QualityIssue.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>

namespace CollectionQuality {

/// Albums whose cover Rockbox cannot show, tracks whose tags were not read, and files that are gone, sorted. With
/// `deviceRoot` the tracks are those of the device, where a cover has to be beside the music. Does not fail. Ends
/// soon, with an empty list, once `stop` is requested.
[[nodiscard]] std::vector<QualityIssue> inspect(const std::vector<Track> &tracks,
    const std::optional<std::filesystem::path> &deviceRoot, const std::stop_token &stop = {});

/// Runs on the calling thread after each file that was looked at.
using DuplicateProgress = std::function<void(int done, int total)>;

struct Duplicates {
    std::vector<QualityIssue> groups;
    int compared = 0; ///< of the candidates
    int candidates = 0;

    [[nodiscard]] bool isComplete() const { return compared == candidates; }
};

/// Groups of files that hold the same bytes, sorted; empty files are none. Reads one after the other the files whose
/// `Track::bytes` another track has too, and no others. One file under several names (a path named twice, a link and
/// its target, hard links) is read once and is no duplicate of itself, because a second name takes no room.
/// Throws the system's failure at the first file that cannot be read: a part of the list could be taken for all of it.
/// Ends before the next file once `stop` is requested, with the groups among those that were read.
[[nodiscard]] Duplicates duplicates(
    const std::vector<Track> &tracks, const DuplicateProgress &progress, const std::stop_token &stop = {});

} // namespace CollectionQuality
