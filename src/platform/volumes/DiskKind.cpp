#include "platform/volumes/DiskKind.h"

#include "platform/volumes/MountTable.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace Volumes {

namespace {

std::optional<MountTable::Mount> mountOf(dev_t volume)
{
    std::ifstream file("/proc/self/mountinfo");
    const std::string table {std::istreambuf_iterator<char>(file), {}};
    for (const MountTable::Mount &mount : MountTable::visible(MountTable::parse(table))) {
        if (mount.device == volume && mount.root == "/") {
            return mount;
        }
    }
    return std::nullopt;
}

/// The number of the disk or partition that this path names; 0 where it names none.
dev_t blockDevice(const std::filesystem::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISBLK(status.st_mode) ? status.st_rdev : 0;
}

/// The block device behind a volume. File systems over several disks and those in user space have numbers of their own
/// (major 0), and their mounts name the device.
dev_t diskOf(dev_t volume)
{
    if (major(volume) != 0) {
        return volume;
    }
    const std::optional<MountTable::Mount> mount = mountOf(volume);
    return mount ? blockDevice(mount->source) : 0;
}

bool says(const std::filesystem::path &attribute, char value)
{
    std::ifstream file(attribute);
    return file.get() == value;
}

} // namespace

DiskKind diskKind(dev_t volume, const std::filesystem::path &system)
{
    const dev_t disk = diskOf(volume);
    if (disk == 0) {
        return DiskKind::Parallel;
    }
    const std::string number = std::to_string(major(disk)) + ":" + std::to_string(minor(disk));
    std::error_code failure;
    std::filesystem::path device = std::filesystem::canonical(system / "dev/block" / number, failure);
    if (failure) {
        return DiskKind::Parallel;
    }
    if (std::filesystem::exists(device / "partition", failure)) {
        device = device.parent_path();
    }
    const std::string place = device.native();
    const auto isOn = [&](const char *bus) { return place.find(bus) != std::string::npos; };
    const bool isSlow = says(device / "removable", '1') || isOn("/usb") || isOn("/mmc_host/");
    const bool isTurning = says(device / "queue/rotational", '1') && !isOn("/virtio"); // of which nobody knows
    return isSlow || isTurning ? DiskKind::Serial : DiskKind::Parallel;
}

VolumeIdentity identityOf(dev_t volume, const std::filesystem::path &links)
{
    VolumeIdentity found;
    const std::optional<MountTable::Mount> mount = mountOf(volume);
    if (!mount) {
        return found;
    }
    found.mountPoint = mount->mountPoint;
    const dev_t disk = diskOf(volume);
    std::error_code failure;
    for (std::filesystem::directory_iterator link(links, failure), end; !failure && link != end;
        link.increment(failure)) {
        if (disk != 0 && blockDevice(link->path()) == disk) {
            found.uuid = link->path().filename().native();
        }
    }
    return found;
}

} // namespace Volumes
