#include "storage/MacMetadata.h"

#include "storage/Device.h"
#include "storage/PathSafety.h"
#include "storage/SavedFiles.h"

#include "platform/DiskCalls.h"
#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view companionPrefix = "._";
constexpr std::array<unsigned char, 4> appleDoubleMagic {0x00, 0x05, 0x16, 0x07};

struct FolderCloser {
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, FolderCloser>;

/// Null for what is no folder, a link included, and for what cannot be opened.
OpenFolder openFolder(const std::string &path)
{
    Files::Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    OpenFolder folder(descriptor.get() < 0 ? nullptr : ::fdopendir(descriptor.get()));
    if (folder) {
        (void)descriptor.release(); // the folder's now
    }
    return folder;
}

/// The S_IFMT bits of the item itself, of which `name` in the open `folder` is the path; 0 if it cannot be queried.
mode_t kindOf(int folder, const char *name)
{
    struct stat status {};
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_mode & S_IFMT : 0;
}

bool beginsAsAppleDouble(int folder, const char *name)
{
    // Non-blocking, in case a pipe has taken the name since it was looked at.
    const Files::Descriptor file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<unsigned char, 4> head {};
    return file.get() >= 0 && ::read(file.get(), head.data(), head.size()) == ssize_t(head.size())
        && head == appleDoubleMagic;
}

/// Whether the regular file `name` in the open `folder` is the companion of an item beside it.
bool isCompanion(int folder, const char *name)
{
    if (!std::string_view(name).starts_with(companionPrefix)) {
        return false;
    }
    const mode_t item = kindOf(folder, name + companionPrefix.size());
    return item != 0 && item != S_IFLNK && beginsAsAppleDouble(folder, name);
}

struct MusicEntry {
    std::string name;
    bool isFolder = false;
};

/// The folders and companions directly in a folder, in its order.
std::vector<MusicEntry> musicEntries(const std::string &path)
{
    std::vector<MusicEntry> entries;
    const OpenFolder folder = openFolder(path);
    while (const dirent *entry = folder ? ::readdir(folder.get()) : nullptr) {
        const char *name = entry->d_name;
        if (std::string_view(name) == "." || std::string_view(name) == "..") {
            continue;
        }
        const int descriptor = ::dirfd(folder.get());
        // Most drivers tell the kind with the name, which saves a call for each of the many audio files.
        const mode_t kind = entry->d_type == DT_UNKNOWN ? kindOf(descriptor, name) : mode_t(DTTOIF(entry->d_type));
        if (kind == S_IFDIR || (kind == S_IFREG && isCompanion(descriptor, name))) {
            entries.push_back({name, kind == S_IFDIR});
        }
    }
    return entries;
}

/// A folder is closed before those in it are walked, so that no depth uses up the descriptors.
void walkMusic(const std::string &folder, std::vector<std::filesystem::path> &files)
{
    for (const MusicEntry &entry : musicEntries(folder)) {
        const std::string path = folder + '/' + entry.name;
        if (entry.isFolder) {
            walkMusic(path, files);
        } else {
            files.emplace_back(path);
        }
    }
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
            && kindOf(AT_FDCWD, file.c_str()) == S_IFREG && beginsAsAppleDouble(AT_FDCWD, file.c_str())
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
            walkMusic(entry.path().native(), files);
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
            const std::error_code failure(errno, std::generic_category());
            throw std::filesystem::filesystem_error("unlink", file, failure);
        }
    }
    return int(files.size());
}

} // namespace Storage
