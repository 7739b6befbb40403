// What kind of disk a volume lies on, as far as reading many small files goes.
//
// The kernel's description of its devices is asked (sysfs(5), Documentation/ABI/stable/sysfs-block), no disk. Blocking
// for a moment; any thread; never throws.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace Volumes {

/// How a disk takes several requests at once: gladly, or one after the other, since something in it moves or its cable
/// is slow. What is not known counts as Parallel: memory, the network, a disk that a host lends.
enum class DiskKind : std::uint8_t { Parallel, Serial };

/// Of the volume with this number (st_dev). `system` stands for /sys.
[[nodiscard]] DiskKind diskKind(dev_t volume, const std::filesystem::path &system = "/sys");

/// What a volume is known by from one mount to the next, and where it is mounted.
struct VolumeIdentity {
    std::string uuid; ///< as the system has found it; empty where it has not
    std::filesystem::path mountPoint; ///< of the whole volume; empty where only a folder of it is mounted
};
[[nodiscard]] VolumeIdentity identityOf(dev_t volume, const std::filesystem::path &links = "/dev/disk/by-uuid");

} // namespace Volumes
