// Mounted disks: which there are, how much room they have, what names they take, and how they leave.
//
// Blocking free functions for any thread but the UI's (a disk that hangs holds up its caller), and a watcher that
// lives on the UI thread.
#pragma once

#include <QObject>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Volumes {

/// Mount points of disks in the mount table's order: no kernel file systems, none hidden by a leading dot, each once.
/// Only the table is read, no disk is touched. Empty if the table cannot be read.
[[nodiscard]] std::vector<std::filesystem::path> mounted();

struct Capacity {
    std::int64_t available = 0; ///< bytes free for this user
    std::int64_t total = 0;
};
/// Room on the volume that holds `path`. Throws std::system_error.
[[nodiscard]] Capacity capacity(const std::filesystem::path &path);

/// What else is known of the volume that holds a path.
struct Traits {
    std::string fileSystem; ///< as the mount table names it ("vfat"); empty where it has no name there
    bool isWritable = false; ///< for this user
    bool operator==(const Traits &) const = default;
};
/// Absent where the volume cannot be asked.
[[nodiscard]] std::optional<Traits> traits(const std::filesystem::path &path);

/// Whether this path is that of a mounted disk as the desktop mounts one: one of mounted(), and directly in a folder
/// whose text is "/media", "/media/USER", "/run/media/USER" or "/mnt". A plain folder there is none.
[[nodiscard]] bool isMountedDisk(const std::filesystem::path &path);
/// Replaces that list, and where `isMounted` is given, the question whether something is mounted at a path; for tests.
void setMountFolders(
    std::vector<std::filesystem::path> folders, std::function<bool(const std::filesystem::path &)> isMounted = {});

/// What a volume takes as a name. FAT and exFAT refuse " * : < > ? \ | and control characters, by whichever driver they
/// are mounted; the kernel's drivers also drop trailing dots and blanks, which FUSE's exFAT keeps.
enum class NameRules : std::uint8_t { Posix, Fat };
/// Posix where the volume cannot be asked.
[[nodiscard]] NameRules nameRules(const std::filesystem::path &path);

/// Writes out what the volume mounted at `mountPoint` still holds in memory, unmounts it and ejects its drive, in this
/// order. May wait for the disk for minutes: `timeout` is the limit for each of the last two steps, and holds for the
/// user's answer too, where the system asks for a password. The calling thread needs no event loop.
/// Throws MarluneError with a text that says what happened, in what state the disk is left and what to do.
void eject(const std::filesystem::path &mountPoint, std::chrono::milliseconds timeout = std::chrono::minutes(10));

/// Tells of mounts and unmounts of what mounted() lists. A path that holds another disk than before is first reported
/// as unmounted, then as mounted. Lives on a thread with an event loop; silent where the mount table cannot be watched.
class Watcher : public QObject {
    Q_OBJECT

public:
    explicit Watcher(QObject *parent = nullptr);
    ~Watcher() override;

Q_SIGNALS:
    void mounted(const std::filesystem::path &mountPoint);
    void unmounted(const std::filesystem::path &mountPoint);

private:
    class Table;
    std::unique_ptr<Table> m_table;
};

} // namespace Volumes
