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

/// Opens the folder itself, never the target of a link.
Files::Descriptor openFolderAt(int folder, const char *name)
{
    const int descriptor = ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        Files::throwFailure(errno, name);
    }
    return Files::Descriptor(descriptor);
}

struct TreeEntry {
    std::string name;
    Files::Kind kind;
};

Files::Kind kindOf(int folder, const dirent &entry)
{
    switch (entry.d_type) {
    case DT_REG:
        return Files::Kind::File;
    case DT_DIR:
        return Files::Kind::Folder;
    case DT_LNK:
        return Files::Kind::Link;
    case DT_UNKNOWN: // not every file system says what an item is
        return Files::kindOf(entry.d_name, folder);
    default:
        return Files::Kind::Other;
    }
}

/// All that the folder holds, hidden items included. Listed before any of it is worked on, because a folder that
/// changes while it is read may leave out items.
std::vector<TreeEntry> entriesOf(int folder, const char *folderName)
{
    // The stream closes its own descriptor.
    Files::Descriptor own = openFolderAt(folder, ".");
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(own.get()), ::closedir);
    if (!stream) {
        Files::throwFailure(errno, folderName);
    }
    (void)own.release();
    std::vector<TreeEntry> entries;
    errno = 0;
    while (const dirent *const found = ::readdir(stream.get())) {
        const std::string name = found->d_name;
        if (name != "." && name != "..") {
            entries.push_back({name, kindOf(folder, *found)});
        }
        errno = 0;
    }
    if (errno != 0) {
        Files::throwFailure(errno, folderName);
    }
    return entries;
}

std::vector<TreeEntry> entriesOf(const std::filesystem::path &folder)
{
    return entriesOf(openFolderAt(AT_FDCWD, folder.c_str()).get(), folder.c_str());
}

std::vector<TreeEntry> entriesOrNone(const std::filesystem::path &folder, Storage::Unreadable unreadable)
{
    try {
        return entriesOf(folder);
    } catch (const std::system_error &failure) {
        if (unreadable == Storage::Unreadable::Throw && failure.code() != std::errc::no_such_file_or_directory) {
            throw;
        }
        return {};
    }
}

class TreeCopy {
public:
    void item(int from, const TreeEntry &entry, int to) const
    {
        const char *const name = entry.name.c_str();
        switch (entry.kind) {
        case Files::Kind::Folder:
            return folder(from, name, to);
        case Files::Kind::File:
            return file(from, name, to);
        case Files::Kind::Link:
            throw MarluneError(QStringLiteral("Paczka zawiera dowiązanie symboliczne."));
        case Files::Kind::None:
            Files::throwFailure(ENOENT, name);
        case Files::Kind::Other:
            Files::throwFailure(EINVAL, name); // to open a pipe or a device can already do something to it
        }
    }

private:
    void folder(int from, const char *name, int to) const
    {
        const Files::Descriptor source = openFolderAt(from, name);
        if (diskCalls().mkdirat(to, name, 0777) != 0) {
            Files::throwFailure(errno, name);
        }
        const Files::Descriptor destination = openFolderAt(to, name);
        for (const TreeEntry &entry : entriesOf(source.get(), name)) {
            item(source.get(), entry, destination.get());
        }
    }

    void file(int from, const char *name, int to) const
    {
        const Files::Descriptor source = Files::openForReading(name, Files::Links::Refuse, from);
        struct stat status {};
        if (::fstat(source.get(), &status) != 0) {
            Files::throwFailure(errno, name);
        }
        Files::Descriptor destination(
            diskCalls().openat(to, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
        if (destination.get() < 0) {
            Files::throwFailure(errno, name);
        }
        copyBytes(source.get(), destination.get(), name);
        const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, status.st_mtim};
        (void)diskCalls().futimens(destination.get(), times); // a copy with another time is a good copy
        if (diskCalls().close(destination.release()) != 0) {
            Files::throwFailure(errno, name);
        }
    }

    void copyBytes(int source, int destination, const char *name) const
    {
        try {
            for (std::size_t count = copyBlockBytes; count == copyBlockBytes;) {
                count = Files::readFully(source, {m_block.get(), copyBlockBytes});
                Files::writeFully(destination, {m_block.get(), count});
            }
        } catch (const std::system_error &failure) {
            Files::throwFailure(failure.code().value(), name);
        }
    }

    std::unique_ptr<char[]> m_block = std::make_unique_for_overwrite<char[]>(copyBlockBytes);
};

class TreeRemoval {
public:
    explicit TreeRemoval(const std::filesystem::path &folder)
        : m_top(openFolderAt(AT_FDCWD, folder.c_str()))
    {
    }

    void run()
    {
        empty(m_top.get(), ".", 1);
        while (!m_deep.empty()) {
            const std::filesystem::path name = std::move(m_deep.back());
            m_deep.pop_back();
            remove(m_top.get(), name.c_str(), 1);
        }
    }

private:
    /// Folders open at a time; a program may have 1024 descriptors.
    static constexpr int deepest = 100;

    void empty(int folder, const char *name, int depth)
    {
        for (const TreeEntry &entry : entriesOf(folder, name)) {
            const char *const item = entry.name.c_str();
            if (entry.kind != Files::Kind::Folder) {
                diskCalls().unlinkat(folder, item, 0);
            } else if (depth < deepest || !moveUp(folder, item)) {
                remove(folder, item, depth + 1);
            }
        }
    }

    void remove(int parent, const char *name, int depth)
    {
        try {
            const Files::Descriptor folder = openFolderAt(parent, name);
            empty(folder.get(), name, depth);
        } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): a folder that still holds something stays
        }
        diskCalls().unlinkat(parent, name, AT_REMOVEDIR);
    }

    /// For the time when nothing else is open.
    bool moveUp(int folder, const char *name)
    {
        const std::filesystem::path moved = Files::temporaryName();
        if (diskCalls().renameat(folder, name, m_top.get(), moved.c_str()) != 0) {
            return false;
        }
        m_deep.push_back(moved);
        return true;
    }

    Files::Descriptor m_top;
    std::vector<std::filesystem::path> m_deep;
};

void walk(const std::filesystem::path &folder, const std::vector<TreeEntry> &entries, Storage::Unreadable unreadable,
    const Storage::UseItem &use)
{
    for (const TreeEntry &entry : entries) {
        const std::filesystem::path item = folder / entry.name;
        if (entry.kind == Files::Kind::None) {
            continue;
        }
        use(item, entry.kind);
        if (entry.kind == Files::Kind::Folder) {
            walk(item, entriesOrNone(item, unreadable), unreadable, use);
        }
    }
}

} // namespace

namespace Storage {

Files::Descriptor openFolder(const std::filesystem::path &path, int from)
{
    // With a separator at its end the name of a link would mean its target.
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    return openFolderAt(from, item.c_str());
}

void copyTree(int from, const std::filesystem::path &name, int to)
{
    TreeCopy().item(from, {name.native(), Files::kindOf(name, from)}, to);
}

void forEachBelow(const std::filesystem::path &folder, Unreadable unreadable, const UseItem &use)
{
    // The folder itself must be there.
    walk(folder, unreadable == Unreadable::Throw ? entriesOf(folder) : entriesOrNone(folder, unreadable), unreadable,
        use);
}

void removeTree(const std::filesystem::path &folder)
{
    try {
        TreeRemoval(folder).run();
    } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): what can be removed is
    }
    diskCalls().unlinkat(AT_FDCWD, folder.c_str(), AT_REMOVEDIR);
}

} // namespace Storage
