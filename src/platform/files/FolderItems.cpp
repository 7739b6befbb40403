#include "platform/files/FolderItems.h"

#include <dirent.h>

#include <cerrno>
#include <memory>

namespace {

Files::Kind kindOfEntry(int folder, const dirent &entry, Files::Undescribed undescribed)
{
    switch (entry.d_type) {
    case DT_REG:
        return Files::Kind::File;
    case DT_DIR:
        return Files::Kind::Folder;
    case DT_LNK:
        return Files::Kind::Link;
    case DT_UNKNOWN: // not every file system says what an item is
        return undescribed == Files::Undescribed::Throw ? Files::kindOf(entry.d_name, folder)
                                                        : Files::kindOrNone(entry.d_name, folder);
    default:
        return Files::Kind::Other;
    }
}

/// Appends all that the open folder holds; the system's error where that ends early, otherwise 0.
int appendItems(int folder, std::vector<Files::FolderItem> &items, Files::Undescribed undescribed)
{
    // The stream has a place of its own in the folder, and closes its own descriptor.
    Files::Descriptor own(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(own.get() < 0 ? nullptr : ::fdopendir(own.get()), ::closedir);
    if (!stream) {
        return errno;
    }
    (void)own.release();
    errno = 0;
    while (const dirent *const found = ::readdir(stream.get())) {
        std::string name = found->d_name;
        if (name != "." && name != "..") {
            const Files::Kind kind = kindOfEntry(folder, *found, undescribed);
            items.push_back({std::move(name), kind});
        }
        errno = 0;
    }
    return errno;
}

} // namespace

namespace Files {

Folder openFolder(const std::filesystem::path &path, int from)
{
    const int descriptor
        = ::openat(from, withoutSeparator(path).c_str(), O_RDONLY | O_NOFOLLOW | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        throwFailure(errno, path);
    }
    return {Descriptor(descriptor), path};
}

std::vector<FolderItem> itemsOf(const Folder &folder, Undescribed undescribed)
{
    std::vector<FolderItem> items;
    if (const int error = appendItems(folder.descriptor.get(), items, undescribed); error != 0) {
        throwFailure(error, folder.path);
    }
    return items;
}

Descriptor readableFolder(const std::filesystem::path &folder)
{
    return Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

std::vector<FolderItem> readableItemsOf(const Descriptor &folder)
{
    std::vector<FolderItem> items;
    if (folder.get() >= 0) {
        (void)appendItems(folder.get(), items, Undescribed::None);
    }
    return items;
}

std::vector<FolderItem> readableItemsOf(const std::filesystem::path &folder)
{
    return readableItemsOf(readableFolder(folder));
}

} // namespace Files
