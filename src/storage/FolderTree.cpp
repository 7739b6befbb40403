#include "storage/FolderTree.h"

#include "storage/Blocks.h"

#include "platform/MarluneError.h"
#include "platform/files/DiskCalls.h"
#include "platform/files/FolderItems.h"

#include <sys/stat.h>

#include <cerrno>
#include <vector>

namespace {

class TreeCopy {
public:
    explicit TreeCopy(const std::stop_token &stop)
        : m_stop(stop)
    {
    }

    void item(int from, const Files::FolderItem &entry, int to) const
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
        const Files::Folder source = Files::openFolder(name, from);
        if (diskCalls().mkdirat(to, name, 0777) != 0) {
            Files::throwFailure(errno, name);
        }
        const Files::Folder destination = Files::openFolder(name, to);
        for (const Files::FolderItem &entry : Files::itemsOf(source)) {
            if (m_stop.stop_requested()) {
                return;
            }
            item(source.descriptor.get(), entry, destination.descriptor.get());
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
        try {
            Storage::copyBlocks(source.get(), destination.get());
        } catch (const std::system_error &failure) {
            Files::throwFailure(failure.code().value(), name);
        }
        const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, status.st_mtim};
        (void)diskCalls().futimens(destination.get(), times); // a copy with another time is a good copy
        if (diskCalls().close(destination.release()) != 0) {
            Files::throwFailure(errno, name);
        }
    }

    const std::stop_token &m_stop;
};

struct Identity {
    dev_t disk = 0;
    ino_t number = 0;

    bool operator==(const Identity &) const = default;
};

Identity identityOf(const Files::Folder &folder)
{
    struct stat status {};
    if (::fstat(folder.descriptor.get(), &status) != 0) {
        Files::throwFailure(errno, folder.path);
    }
    return {status.st_dev, status.st_ino};
}

/// A walk from one open folder to the next. Only the lowest few are open; on the way back an upper one is opened from
/// the one below it, and has to be the folder that it was.
class TreeWalk {
public:
    TreeWalk(Storage::Unreadable unreadable, Storage::UseItem onItem, Storage::UseItem onLeft)
        : m_unreadable(unreadable)
        , m_onItem(std::move(onItem))
        , m_onLeft(std::move(onLeft))
    {
    }

    void run(const std::filesystem::path &folder, int from, const std::stop_token &stop = {})
    {
        try {
            enter(Files::openFolder(folder, from));
        } catch (const std::system_error &) {
            if (m_unreadable == Storage::Unreadable::Throw) {
                throw;
            }
        }
        while (!m_levels.empty() && !stop.stop_requested()) {
            Level &level = m_levels.back();
            if (level.next == level.items.size()) {
                leave();
                continue;
            }
            const Files::FolderItem &item = level.items[level.next++];
            if (item.kind != Files::Kind::None) {
                const Storage::TreeItem found {level.folder.path / item.name, item.kind, level.folder.descriptor.get()};
                m_onItem(found);
                if (found.kind == Files::Kind::Folder) {
                    descend(found);
                }
            }
        }
    }

private:
    static constexpr std::size_t maxOpen = 8; ///< at least 2: from a folder without a subfolder none is opened

    struct Level {
        Files::Folder folder;
        Identity identity;
        std::vector<Files::FolderItem> items;
        std::size_t next = 0;
    };

    void enter(Files::Folder folder)
    {
        const Identity identity = identityOf(folder);
        std::vector<Files::FolderItem> items = Files::itemsOf(
            folder, m_unreadable == Storage::Unreadable::Throw ? Files::Undescribed::Throw : Files::Undescribed::None);
        m_levels.push_back({std::move(folder), identity, std::move(items)});
        if (m_levels.size() > maxOpen) {
            m_levels[m_levels.size() - 1 - maxOpen].folder.descriptor = Files::Descriptor();
        }
    }

    void descend(const Storage::TreeItem &item)
    {
        try {
            Files::Folder folder = Files::openFolder(item.path.filename(), item.folder);
            folder.path = item.path;
            enter(std::move(folder));
        } catch (const std::system_error &failure) {
            if (m_unreadable == Storage::Unreadable::Throw && failure.code() != std::errc::no_such_file_or_directory) {
                Files::throwFailure(failure.code().value(), item.path);
            }
            m_onLeft(item);
        }
    }

    void leave()
    {
        const Level left = std::move(m_levels.back());
        m_levels.pop_back();
        if (m_levels.empty()) {
            return;
        }
        Level &upper = m_levels.back();
        if (upper.folder.descriptor.get() < 0) {
            upper.folder.descriptor = Files::openFolder("..", left.folder.descriptor.get()).descriptor;
            if (identityOf(upper.folder) != upper.identity) {
                Files::throwFailure(ESTALE, upper.folder.path); // moved, so what is above it is no part of the tree
            }
        }
        m_onLeft({left.folder.path, Files::Kind::Folder, upper.folder.descriptor.get()});
    }

    Storage::Unreadable m_unreadable;
    Storage::UseItem m_onItem;
    Storage::UseItem m_onLeft;
    std::vector<Level> m_levels;
};

} // namespace

namespace Storage {

void copyTree(int from, const std::filesystem::path &name, int to, const std::stop_token &stop)
{
    TreeCopy(stop).item(from, {name.native(), Files::kindOf(name, from)}, to);
}

void forEachBelow(const std::filesystem::path &folder, Unreadable unreadable, const UseItem &use, int from,
    const std::stop_token &stop)
{
    TreeWalk(unreadable, use, [](const TreeItem &) { }).run(folder, from, stop);
}

void removeTree(const std::filesystem::path &folder)
{
    const auto removeFile = [](const TreeItem &item) {
        if (item.kind != Files::Kind::Folder) {
            diskCalls().unlinkat(item.folder, item.path.filename().c_str(), 0);
        }
    };
    const auto removeFolder
        = [](const TreeItem &item) { diskCalls().unlinkat(item.folder, item.path.filename().c_str(), AT_REMOVEDIR); };
    try {
        TreeWalk(Unreadable::PassOver, removeFile, removeFolder).run(folder, AT_FDCWD);
    } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): what can be removed is
    }
    diskCalls().unlinkat(AT_FDCWD, folder.c_str(), AT_REMOVEDIR);
}

} // namespace Storage
