#include "storage/MacMetadata.h"

#include "storage/Digest.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"
#include "storage/SavedFiles.h"
#include "storage/Writers.h"

#include "platform/files/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view companionPrefix = "._";
constexpr std::array<unsigned char, 4> appleDoubleMagic {0x00, 0x05, 0x16, 0x07};

bool beginsAsAppleDouble(const std::filesystem::path &name, int folder)
{
    // Non-blocking, in case a pipe has taken the name since it was looked at.
    const Files::Descriptor file(
        ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<unsigned char, 4> head {};
    return file.get() >= 0 && ::read(file.get(), head.data(), head.size()) == ssize_t(head.size())
        && head == appleDoubleMagic;
}

/// Whether this is a regular file, and the companion of an item beside it.
bool isCompanion(const Storage::TreeItem &item)
{
    const std::string name = item.path.filename();
    if (item.kind != Files::Kind::File || !name.starts_with(companionPrefix) || name.size() == companionPrefix.size()) {
        return false;
    }
    const Files::Kind beside = Files::kindOrNone(name.substr(companionPrefix.size()), item.folder);
    return beside != Files::Kind::None && beside != Files::Kind::Link && beginsAsAppleDouble(name, item.folder);
}

std::vector<std::filesystem::path> companionsOf(
    std::span<const std::filesystem::path> candidates, const Storage::DeviceAnchor &device)
{
    std::vector<std::filesystem::path> files;
    for (const std::filesystem::path &candidate : candidates) {
        std::filesystem::path file = candidate;
        file.replace_filename(std::string(companionPrefix) + candidate.filename().native());
        // Both are asked, because a link beside other files may point onto the device.
        if (!Storage::liesBelow(candidate, device.root()) || !Storage::liesBelow(file, device.root())
            || Files::kindOrNone(file) != Files::Kind::File || !beginsAsAppleDouble(file, AT_FDCWD)) {
            continue;
        }
        const auto place = Storage::pathBelow(file.parent_path(), device.root());
        file = device.root() / place.value_or("") / file.filename();
        if (std::find(files.begin(), files.end(), file) == files.end()) {
            files.push_back(std::move(file));
        }
    }
    return files;
}

/// Copies files of a device to the computer, and removes those that are still what was copied.
class Removal {
public:
    Removal(const Storage::DeviceAnchor &device, std::span<const std::filesystem::path> files,
        const std::filesystem::path &backupRoot, const std::stop_token &stop)
        : m_device(device)
        , m_saved(Storage::saveFiles(
              files, backupRoot, {QStringLiteral("MacMetadata-"), QStringLiteral(".appledouble")},
              [this](const std::filesystem::path &file) { return open(file); }, stop))
    {
    }

    /// False where the file stays.
    [[nodiscard]] bool remove(const std::filesystem::path &file) const
    {
        (void)m_device.require();
        const Files::Folder folder = m_device.folderOf(file);
        return Storage::removeIf(folder, file.filename(), [&] { return isAsCopied(folder, file); });
    }

    /// For where no file was removed.
    void forgetCopies() const { Storage::removeTree(m_saved.folder); }

private:
    [[nodiscard]] Files::Descriptor open(const std::filesystem::path &file)
    {
        const Files::Folder folder = m_device.folderOf(file);
        Files::Descriptor descriptor
            = Files::openForReading(file.filename(), Files::Links::Refuse, folder.descriptor.get());
        if (::fstat(descriptor.get(), &m_copied[file]) != 0) {
            Files::throwFailure(errno, file);
        }
        return descriptor;
    }

    [[nodiscard]] bool isAsCopied(const Files::Folder &folder, const std::filesystem::path &file) const
    {
        const std::filesystem::path name = file.filename();
        const struct stat &copied = m_copied.at(file);
        struct stat present {};
        if (::fstatat(folder.descriptor.get(), name.c_str(), &present, AT_SYMLINK_NOFOLLOW) != 0) {
            Files::throwFailure(errno, file);
        }
        if (!S_ISREG(present.st_mode)) {
            return false;
        }
        const bool isUntouched = present.st_ino == copied.st_ino && present.st_size == copied.st_size
            && present.st_mtim.tv_sec == copied.st_mtim.tv_sec && present.st_mtim.tv_nsec == copied.st_mtim.tv_nsec;
        // FAT has no numbers, and a driver may make up another one: then the content tells.
        return isUntouched
            || Storage::digest(name, folder.descriptor.get()) == Storage::digest(m_saved.copies.at(file));
    }

    const Storage::DeviceAnchor &m_device;
    std::map<std::filesystem::path, struct stat> m_copied; ///< as they were when they were opened
    Storage::SavedFiles m_saved;
};

} // namespace

namespace Storage {

std::vector<std::filesystem::path> macMetadataFiles(const DeviceAnchor &device, const std::stop_token &stop)
{
    (void)device.require();
    const Files::Folder root = device.folder("");
    std::vector<std::filesystem::path> files;
    for (const Files::FolderItem &top : Files::itemsOf(root)) {
        if (top.kind == Files::Kind::Folder && Files::text(top.name).toLower().startsWith(QStringLiteral("music"))) {
            const auto collect = [&](const TreeItem &item) {
                if (isCompanion(item)) {
                    files.push_back(device.root() / item.path);
                }
            };
            forEachBelow(top.name, Unreadable::PassOver, collect, root.descriptor.get(), stop);
        }
    }
    return files;
}

MacCleanup cleanupMacMetadata(const DeviceAnchor &device, const std::filesystem::path &backupRoot,
    std::optional<std::span<const std::filesystem::path>> candidates, const std::stop_token &stop)
{
    (void)device.require();
    const std::vector<std::filesystem::path> files
        = candidates ? companionsOf(*candidates, device) : macMetadataFiles(device, stop);
    MacCleanup cleanup {.removed = 0, .isStopped = stop.stop_requested()};
    if (files.empty() || cleanup.isStopped) {
        return cleanup;
    }
    const Removal removal(device, files, backupRoot, stop);
    for (const std::filesystem::path &file : files) {
        if (stop.stop_requested()) {
            cleanup.isStopped = true;
            break;
        }
        cleanup.removed += removal.remove(file) ? 1 : 0;
    }
    if (cleanup.isStopped && cleanup.removed == 0) {
        removal.forgetCopies();
    }
    return cleanup;
}

} // namespace Storage
