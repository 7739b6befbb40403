#include "storage/MacMetadata.h"

#include "storage/Device.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"
#include "storage/SavedFiles.h"

#include "platform/DiskCalls.h"
#include "platform/Files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view companionPrefix = "._";
constexpr std::array<unsigned char, 4> appleDoubleMagic {0x00, 0x05, 0x16, 0x07};

bool beginsAsAppleDouble(const std::filesystem::path &path)
{
    // Non-blocking, in case a pipe has taken the name since it was looked at.
    const Files::Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<unsigned char, 4> head {};
    return file.get() >= 0 && ::read(file.get(), head.data(), head.size()) == ssize_t(head.size())
        && head == appleDoubleMagic;
}

/// Whether this regular file is the companion of an item beside it.
bool isCompanion(const std::filesystem::path &file)
{
    const std::string name = file.filename();
    if (!name.starts_with(companionPrefix) || name.size() == companionPrefix.size()) {
        return false;
    }
    const Files::Kind item = Files::kindOrNone(file.parent_path() / name.substr(companionPrefix.size()));
    return item != Files::Kind::None && item != Files::Kind::Link && beginsAsAppleDouble(file);
}

std::vector<std::filesystem::path> companionsOf(
    std::span<const std::filesystem::path> candidates, const std::filesystem::path &root)
{
    std::vector<std::filesystem::path> files;
    for (const std::filesystem::path &candidate : candidates) {
        std::filesystem::path file = candidate;
        file.replace_filename(std::string(companionPrefix) + candidate.filename().native());
        // Both are asked, because a link beside other files may point onto the device.
        if (Storage::liesBelow(candidate, root) && Storage::liesBelow(file, root)
            && Files::kindOrNone(file) == Files::Kind::File && beginsAsAppleDouble(file)
            && std::find(files.begin(), files.end(), file) == files.end()) {
            files.push_back(std::move(file));
        }
    }
    return files;
}

} // namespace

namespace Storage {

std::vector<std::filesystem::path> macMetadataFiles(const std::filesystem::path &root)
{
    (void)Device::inspect(root);
    std::vector<std::filesystem::path> files;
    for (const std::filesystem::directory_entry &entry : std::filesystem::directory_iterator(root)) {
        // A link among them is not opened.
        if (Files::name(entry.path()).toLower().startsWith(QStringLiteral("music"))) {
            forEachBelow(entry.path(), Unreadable::PassOver, [&](const TreeItem &item) {
                if (item.kind == Files::Kind::File && isCompanion(item.path)) {
                    files.push_back(item.path);
                }
            });
        }
    }
    return files;
}

int cleanupMacMetadata(const std::filesystem::path &root, const std::filesystem::path &backupRoot,
    std::optional<std::span<const std::filesystem::path>> candidates)
{
    (void)Device::inspect(root);
    const std::vector<std::filesystem::path> files
        = candidates ? companionsOf(*candidates, root) : macMetadataFiles(root);
    if (files.empty()) {
        return 0;
    }
    (void)saveFiles(files, backupRoot, {QStringLiteral("MacMetadata-"), QStringLiteral(".appledouble")});
    for (const std::filesystem::path &file : files) {
        (void)Device::inspect(root);
        if (diskCalls().unlink(file.c_str()) != 0) {
            Files::throwFailure(errno, file);
        }
    }
    return int(files.size());
}

} // namespace Storage
