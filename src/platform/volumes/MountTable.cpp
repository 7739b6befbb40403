#include "platform/volumes/MountTable.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace MountTable {

namespace {

// Fields of a line: id, parent, device, root, mount point, options, any number of tags, "-", type, source, options.
constexpr std::size_t idField = 0;
constexpr std::size_t deviceField = 2;
constexpr std::size_t rootField = 3;
constexpr std::size_t mountPointField = 4;
constexpr std::size_t firstTagField = 6;

// Not the kernel's own alone: autofs would mount something when looked at, squashfs and its like are packed
// programs, and the FUSE ones are a desktop's views of things that are no disks.
constexpr std::array<std::string_view, 31> noDisks {"autofs", "binder", "binfmt_misc", "bpf", "cgroup", "cgroup2",
    "configfs", "debugfs", "devpts", "devtmpfs", "efivarfs", "erofs", "fuse.gvfsd-fuse", "fuse.lxcfs", "fuse.portal",
    "fuse.snapfuse", "fuse.squashfuse", "fusectl", "hugetlbfs", "mqueue", "nfsd", "nsfs", "proc", "pstore",
    "rpc_pipefs", "securityfs", "selinuxfs", "smackfs", "squashfs", "sysfs", "tracefs"};

std::vector<std::string_view> splitFields(std::string_view line)
{
    std::vector<std::string_view> fields;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t end = std::min(line.find(' ', start), line.size());
        fields.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

template <typename Number> std::optional<Number> wholeNumber(std::string_view text)
{
    Number number {};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<dev_t> deviceNumber(std::string_view text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const auto first = wholeNumber<unsigned>(text.substr(0, colon));
    const auto second = wholeNumber<unsigned>(text.substr(colon + 1));
    return first && second ? std::optional<dev_t>(makedev(*first, *second)) : std::nullopt;
}

bool isOctal(char digit)
{
    return digit >= '0' && digit <= '7';
}

/// Blank, tab, line feed, backslash and "#" arrive as a backslash and three octal digits; all else as it is.
std::string unescape(std::string_view field)
{
    std::string bytes;
    bytes.reserve(field.size());
    for (std::size_t i = 0; i < field.size(); ++i) {
        const std::string_view digits = field.substr(i + 1, 3);
        const bool escaped = field[i] == '\\' && digits.size() == 3 && digits[0] <= '3'
            && std::all_of(digits.begin(), digits.end(), isOctal);
        if (!escaped) {
            bytes.push_back(field[i]);
            continue;
        }
        bytes.push_back(static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0')));
        i += 3;
    }
    return bytes;
}

const Mount *mountAt(const std::vector<Mount> &mounts, const std::filesystem::path &mountPoint)
{
    const auto found = std::find_if(mounts.begin(), mounts.end(),
        [&](const Mount &mount) { return mount.mountPoint.native() == mountPoint.native(); });
    return found == mounts.end() ? nullptr : &*found;
}

/// Paths of those in `mounts` that `others` does not hold as the same mount.
std::vector<std::filesystem::path> missingFrom(const std::vector<Mount> &others, const std::vector<Mount> &mounts)
{
    std::vector<std::filesystem::path> paths;
    for (const Mount &mount : mounts) {
        const Mount *other = mountAt(others, mount.mountPoint);
        if (other == nullptr || *other != mount) {
            paths.push_back(mount.mountPoint);
        }
    }
    return paths;
}

} // namespace

std::optional<Mount> parseLine(std::string_view line)
{
    const std::vector<std::string_view> fields = splitFields(line);
    if (fields.size() <= firstTagField) {
        return std::nullopt;
    }
    const auto separator = std::find(fields.begin() + firstTagField, fields.end(), "-");
    const auto id = wholeNumber<int>(fields[idField]);
    const auto device = deviceNumber(fields[deviceField]);
    if (fields.end() - separator < 3 || !id || !device || !fields[mountPointField].starts_with('/')) {
        return std::nullopt;
    }
    return Mount {*id, *device, unescape(fields[rootField]), unescape(fields[mountPointField]), unescape(separator[1]),
        unescape(separator[2])};
}

std::vector<Mount> parse(std::string_view table)
{
    std::vector<Mount> mounts;
    while (!table.empty()) {
        const std::size_t end = std::min(table.find('\n'), table.size());
        if (std::optional<Mount> mount = parseLine(table.substr(0, end))) {
            mounts.push_back(std::move(*mount));
        }
        table.remove_prefix(std::min(end + 1, table.size()));
    }
    return mounts;
}

bool isDisk(const Mount &mount)
{
    if (mount.type == "tmpfs" || mount.type == "ramfs") {
        return mount.root != "/";
    }
    return std::find(noDisks.begin(), noDisks.end(), mount.type) == noDisks.end();
}

bool hasFatNames(std::string_view type)
{
    // A FUSE driver that serves a disk is "fuseblk" whatever the disk's format is. There it is exFAT's or NTFS's; NTFS
    // takes every name that FAT does, so that FAT's rules are the safe answer for both.
    return type == "vfat" || type == "msdos" || type == "exfat" || type == "fuse.exfat" || type == "fuse.exfat-fuse"
        || type == "fuseblk" || type.starts_with("fuseblk.");
}

std::vector<Mount> visible(const std::vector<Mount> &mounts)
{
    std::vector<Mount> result;
    for (const Mount &mount : mounts) {
        const auto known = std::find_if(result.begin(), result.end(),
            [&](const Mount &other) { return other.mountPoint.native() == mount.mountPoint.native(); });
        if (known == result.end()) {
            result.push_back(mount);
        } else {
            *known = mount;
        }
    }
    return result;
}

Changes changes(const std::vector<Mount> &before, const std::vector<Mount> &after)
{
    return {missingFrom(after, before), missingFrom(before, after)};
}

} // namespace MountTable
