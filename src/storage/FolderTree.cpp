#include "storage/FolderTree.h"

#include "platform/DiskCalls.h"
#include "platform/MarluneError.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::size_t copyBlockBytes = 0x40000;

[[noreturn]] void refuseItem(int error, const char *name)
{
    throw std::filesystem::filesystem_error("tree", name, std::error_code(error, std::generic_category()));
}

/// Reads the item itself, never the target of a link; what is no regular file or folder does not make it wait.
Files::Descriptor openAt(int folder, const char *name, int flags = 0)
{
    const int descriptor = ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | flags);
    if (descriptor < 0) {
        refuseItem(errno, name);
    }
    return Files::Descriptor(descriptor);
}

struct TreeEntry {
    std::string name;
    unsigned char type; ///< DT_REG, DT_DIR, ...
};

unsigned char typeOf(int folder, const char *name)
{
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        refuseItem(errno, name);
    }
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

/// All that the folder holds, hidden items included. Listed before any of it is worked on, because a folder that
/// changes while it is read may leave out items.
std::vector<TreeEntry> entriesOf(int folder, const char *folderName)
{
    // The stream closes its own descriptor.
    Files::Descriptor own = openAt(folder, ".", O_DIRECTORY);
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(own.get()), ::closedir);
    if (!stream) {
        refuseItem(errno, folderName);
    }
    (void)own.release();
    std::vector<TreeEntry> entries;
    errno = 0;
    while (const dirent *const found = ::readdir(stream.get())) {
        const std::string name = found->d_name;
        if (name != "." && name != "..") {
            // Not every file system says what an item is.
            const bool told = found->d_type != DT_UNKNOWN;
            entries.push_back({name, told ? found->d_type : typeOf(folder, name.c_str())});
        }
        errno = 0;
    }
    if (errno != 0) {
        refuseItem(errno, folderName);
    }
    return entries;
}

class TreeCopy {
public:
    void item(int from, const TreeEntry &entry, int to) const
    {
        const char *const name = entry.name.c_str();
        if (entry.type == DT_DIR) {
            folder(from, name, to);
        } else if (entry.type == DT_REG) {
            file(from, name, to);
        } else if (entry.type == DT_LNK) {
            throw MarluneError(QStringLiteral("Paczka zawiera dowiązanie symboliczne."));
        } else {
            refuseItem(EINVAL, name); // to open a pipe or a device can already do something to it
        }
    }

private:
    void folder(int from, const char *name, int to) const
    {
        const Files::Descriptor source = openAt(from, name, O_DIRECTORY);
        if (diskCalls().mkdirat(to, name, 0777) != 0) {
            refuseItem(errno, name);
        }
        const Files::Descriptor destination = openAt(to, name, O_DIRECTORY);
        for (const TreeEntry &entry : entriesOf(source.get(), name)) {
            item(source.get(), entry, destination.get());
        }
    }

    void file(int from, const char *name, int to) const
    {
        const Files::Descriptor source = openAt(from, name);
        struct stat status {};
        if (::fstat(source.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
            refuseItem(EINVAL, name); // another item by now
        }
        Files::Descriptor destination(
            diskCalls().openat(to, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
        if (destination.get() < 0) {
            refuseItem(errno, name);
        }
        std::size_t count = copyBlockBytes;
        while (count == copyBlockBytes) {
            count = Files::readFully(source.get(), {m_block.get(), copyBlockBytes});
            Files::writeFully(destination.get(), {m_block.get(), count});
        }
        const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, status.st_mtim};
        (void)diskCalls().futimens(destination.get(), times); // a copy with another time is a good copy
        if (diskCalls().close(destination.release()) != 0) {
            refuseItem(errno, name);
        }
    }

    std::unique_ptr<char[]> m_block = std::make_unique_for_overwrite<char[]>(copyBlockBytes);
};

void removeAt(int parent, const char *name)
{
    try {
        const Files::Descriptor folder = openAt(parent, name, O_DIRECTORY);
        for (const TreeEntry &entry : entriesOf(folder.get(), name)) {
            if (entry.type == DT_DIR) {
                removeAt(folder.get(), entry.name.c_str());
            } else {
                diskCalls().unlinkat(folder.get(), entry.name.c_str(), 0);
            }
        }
    } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): what holds something still cannot go below
    }
    diskCalls().unlinkat(parent, name, AT_REMOVEDIR);
}

} // namespace

namespace Storage {

Files::Descriptor openFolder(const std::filesystem::path &path, int from)
{
    // With a separator at its end the name of a link would mean its target.
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    return openAt(from, item.c_str(), O_DIRECTORY);
}

void copyTree(int from, const std::filesystem::path &name, int to)
{
    TreeCopy().item(from, {name.native(), typeOf(from, name.c_str())}, to);
}

void removeTree(const std::filesystem::path &folder)
{
    removeAt(AT_FDCWD, folder.c_str());
}

} // namespace Storage
