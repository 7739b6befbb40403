// The kernel's table of mounts as text of /proc/self/mountinfo (proc(5)), and what changed between two readings.
//
// Pure functions of their arguments, any thread. Nothing here touches a mounted disk, so a disk that hangs holds up
// nobody.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace MountTable {

struct Mount {
    int id = 0; ///< given anew to the next mount as soon as this one is gone
    dev_t device = 0;
    std::string root; ///< folder of the file system that is mounted; "/" unless it is a bind mount of a folder
    std::filesystem::path mountPoint;
    std::string type; ///< "vfat", "fuseblk", "fuse.sshfs", ...
    std::string source; ///< what the file system calls its device, any text

    bool operator==(const Mount &) const = default;
};

/// One line without its line feed; absent where a field is missing or malformed.
[[nodiscard]] std::optional<Mount> parseLine(std::string_view line);
/// The lines that can be read, in their order.
[[nodiscard]] std::vector<Mount> parse(std::string_view table);

/// Whether a disk is behind it rather than the kernel, a service or a packed program. Memory file systems are
/// disks only where a folder of one is mounted elsewhere.
[[nodiscard]] bool isDisk(const Mount &mount);
/// FAT and exFAT of the kernel, and every disk that a FUSE driver serves.
[[nodiscard]] bool hasFatNames(std::string_view type);

/// Each path once, at its first place. Where several mounts cover each other the last one is seen, and kept.
[[nodiscard]] std::vector<Mount> visible(const std::vector<Mount> &mounts);

struct Changes {
    std::vector<std::filesystem::path> unmounted;
    std::vector<std::filesystem::path> mounted;

    bool operator==(const Changes &) const = default;
};
/// From one list of visible mounts to the next. A path that holds another mount than before is in both lists.
[[nodiscard]] Changes changes(const std::vector<Mount> &before, const std::vector<Mount> &after);

} // namespace MountTable
