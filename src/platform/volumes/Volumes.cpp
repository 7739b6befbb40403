#include "platform/volumes/Volumes.h"

#include "platform/files/Files.h"
#include "platform/volumes/MountTable.h"

#include <QPointer>
#include <QSocketNotifier>

#include <linux/magic.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <mutex>
#include <system_error>

namespace Volumes {

namespace {

constexpr const char *mountTableFile = "/proc/self/mountinfo";
constexpr std::int64_t exfatMagic = 0x2011BAB0; // fs/exfat/exfat_raw.h; missing from the headers of older kernels
constexpr std::int64_t fuseMagic = 0x65735546; // fs/fuse/inode.c

struct MountFolders {
    std::mutex guard;
    std::vector<std::filesystem::path> folders;
    std::function<bool(const std::filesystem::path &)> isMounted; ///< in the mount table's place, where given
};

/// As the password file has it; empty for a user whom it does not know.
std::string userName()
{
    std::array<char, 4096> buffer {};
    struct passwd entry {};
    struct passwd *found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return found->pw_name;
    }
    return {};
}

std::vector<std::filesystem::path> desktopMountFolders()
{
    std::vector<std::filesystem::path> folders {"/media", "/mnt"};
    if (const std::string user = userName(); !user.empty()) {
        folders.push_back("/media/" + user);
        folders.push_back("/run/media/" + user);
    }
    return folders;
}

MountFolders &mountFolders()
{
    static MountFolders folders {{}, desktopMountFolders(), {}};
    return folders;
}

bool isMountFolder(const std::filesystem::path &folder)
{
    MountFolders &known = mountFolders();
    const std::lock_guard lock(known.guard);
    return std::any_of(known.folders.begin(), known.folders.end(),
        [&](const std::filesystem::path &other) { return other.native() == folder.native(); });
}

/// The whole table from its start. Throws std::system_error.
std::string readTable(int descriptor)
{
    if (::lseek(descriptor, 0, SEEK_SET) < 0) {
        throw std::system_error(errno, std::generic_category(), mountTableFile);
    }
    std::string text;
    for (std::size_t filled = 0;;) {
        text.resize(filled + 16384);
        filled += Files::readFully(descriptor, std::span(text).subspan(filled));
        if (filled < text.size()) {
            text.resize(filled);
            return text;
        }
    }
}

bool isListed(const MountTable::Mount &mount)
{
    if (mount.mountPoint.filename().native().starts_with('.')) {
        return false;
    }
    // A memory disk that is mounted among the disks was put there to be one.
    return MountTable::isDisk(mount) || (mount.type == "tmpfs" && isMountFolder(mount.mountPoint.parent_path()));
}

std::vector<MountTable::Mount> listedMounts(int descriptor)
{
    std::vector<MountTable::Mount> mounts = MountTable::visible(MountTable::parse(readTable(descriptor)));
    std::erase_if(mounts, [](const MountTable::Mount &mount) { return !isListed(mount); });
    return mounts;
}

/// The type of the mounted file system with this device number, empty if the table does not have it.
std::string mountedType(dev_t device)
{
    const Files::Descriptor file = Files::openForReading(mountTableFile);
    for (const MountTable::Mount &mount : MountTable::parse(readTable(file.get()))) {
        if (mount.device == device) {
            return mount.type;
        }
    }
    return {};
}

} // namespace

std::vector<std::filesystem::path> mounted()
{
    try {
        const Files::Descriptor file = Files::openForReading(mountTableFile);
        std::vector<std::filesystem::path> paths;
        for (const MountTable::Mount &mount : listedMounts(file.get())) {
            paths.push_back(mount.mountPoint);
        }
        return paths;
    } catch (const std::system_error &) {
        return {};
    }
}

Capacity capacity(const std::filesystem::path &path)
{
    struct statvfs room {};
    if (::statvfs(path.c_str(), &room) != 0) {
        Files::throwFailure(errno, path);
    }
    const auto unit = std::int64_t(room.f_frsize);
    return {std::int64_t(room.f_bavail) * unit, std::int64_t(room.f_blocks) * unit};
}

std::optional<Traits> traits(const std::filesystem::path &path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const bool isWritable = ::access(path.c_str(), W_OK) == 0; // says no on a volume mounted for reading alone
    try {
        return Traits {mountedType(status.st_dev), isWritable};
    } catch (const std::system_error &) {
        return Traits {{}, isWritable};
    }
}

bool isMountedDisk(const std::filesystem::path &path)
{
    const std::filesystem::path disk = path.has_filename() ? path : path.parent_path(); // without a slash at its end
    if (!isMountFolder(disk.parent_path())) {
        return false;
    }
    std::function<bool(const std::filesystem::path &)> isMounted;
    {
        MountFolders &known = mountFolders();
        const std::lock_guard lock(known.guard);
        isMounted = known.isMounted;
    }
    if (isMounted) {
        return isMounted(disk);
    }
    const std::vector<std::filesystem::path> disks = mounted();
    return std::find(disks.begin(), disks.end(), disk) != disks.end();
}

void setMountFolders(
    std::vector<std::filesystem::path> folders, std::function<bool(const std::filesystem::path &)> isMounted)
{
    MountFolders &known = mountFolders();
    const std::lock_guard lock(known.guard);
    known.folders = std::move(folders);
    known.isMounted = std::move(isMounted);
}

NameRules nameRules(const std::filesystem::path &path)
{
    struct statfs volume {};
    if (::statfs(path.c_str(), &volume) != 0) {
        return NameRules::Posix;
    }
    const auto magic = std::int64_t(volume.f_type);
    if (magic == MSDOS_SUPER_MAGIC || magic == exfatMagic) {
        return NameRules::Fat;
    }
    struct stat status {};
    if (magic != fuseMagic || ::stat(path.c_str(), &status) != 0) {
        return NameRules::Posix;
    }
    // FUSE drivers all have one magic number; the mount table says what the driver serves.
    try {
        return MountTable::hasFatNames(mountedType(status.st_dev)) ? NameRules::Fat : NameRules::Posix;
    } catch (const std::system_error &) {
        return NameRules::Posix;
    }
}

/// The mount table as last read. The kernel reports a change of it as priority data (POLLPRI, with POLLERR) on the
/// descriptor that read it, so that one descriptor stays open.
class Watcher::Table {
public:
    Table()
        : m_file(Files::openForReading(mountTableFile))
        , m_mounts(listedMounts(m_file.get()))
        , m_notifier(m_file.get(), QSocketNotifier::Exception)
    {
    }

    [[nodiscard]] QSocketNotifier &notifier() { return m_notifier; }

    MountTable::Changes update()
    {
        std::vector<MountTable::Mount> now = listedMounts(m_file.get());
        MountTable::Changes changes = MountTable::changes(m_mounts, now);
        m_mounts = std::move(now);
        return changes;
    }

private:
    Files::Descriptor m_file;
    std::vector<MountTable::Mount> m_mounts;
    QSocketNotifier m_notifier; // before the descriptor, when both go
};

Watcher::Watcher(QObject *parent)
    : QObject(parent)
{
    try {
        m_table = std::make_unique<Table>();
    } catch (const std::system_error &) {
        return;
    }
    connect(&m_table->notifier(), &QSocketNotifier::activated, this, [this] {
        MountTable::Changes changes;
        try {
            changes = m_table->update();
        } catch (const std::exception &) {
            return; // the old table stays, so that the next change makes up for this one
        }
        const QPointer<Watcher> alive(this);
        for (const std::filesystem::path &path : changes.unmounted) {
            if (alive) {
                Q_EMIT unmounted(path);
            }
        }
        for (const std::filesystem::path &path : changes.mounted) {
            if (alive) {
                Q_EMIT mounted(path);
            }
        }
    });
}

Watcher::~Watcher() = default;

} // namespace Volumes
