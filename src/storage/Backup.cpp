#include "storage/Backup.h"

#include "storage/ComputerDisk.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"

#include "platform/MarluneError.h"
#include "platform/files/DiskCalls.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <QDateTime>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

/// They are directly in a backup, which a roll-back relies on.
constexpr const char *savedItems[]
    = {"config.cfg", "themes", "wps", "sbs", "fonts", "icons", "backdrops", "eqs", "fmpresets"};

/// Both by its name and by where it really is: a link to the device leads onto it, and so does its name in other
/// letters where case does not count.
bool liesOn(const std::filesystem::path &root, const std::filesystem::path &destination)
{
    const std::filesystem::path base = Files::standardized(root);
    if (destination == base || destination.native().starts_with(base.native() + "/")) {
        return true;
    }
    std::error_code ignored; // a parent that is missing is no part of the device
    std::filesystem::path folder = std::filesystem::weakly_canonical(destination.parent_path(), ignored);
    for (; folder.has_relative_path(); folder = folder.parent_path()) {
        if (std::filesystem::equivalent(folder, base, ignored)) {
            return true;
        }
    }
    return false;
}

/// Links are followed. Other than at a plain "is it there", a disk that refuses to answer is a failure: the backup
/// would be incomplete.
bool holdsItem(int folder, const char *name)
{
    struct stat status {};
    if (::fstatat(folder, name, &status, 0) == 0) {
        return true;
    }
    if (errno != ENOENT && errno != ELOOP) {
        Files::throwFailure(errno, name);
    }
    return false;
}

void writeReadMe(const std::filesystem::path &folder, const std::filesystem::path &root)
{
    const QString moment = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    const QByteArray text = (QStringLiteral("Kopia ustawień i motywów Rockbox — Marlune\n") + moment
        + QStringLiteral(" +0000\nUrządzenie: ") + Files::name(root)
        + QStringLiteral("\nNie zawiera muzyki ani firmware.\n"))
                                .toUtf8();
    const Files::Descriptor file = Files::createExclusively(folder / "README.txt");
    Files::writeFully(file.get(), text);
}

/// Makes the folder. Returns when all of it is on the medium; false where a stop left it incomplete.
bool fillBackup(const std::filesystem::path &folder, const Storage::DeviceAnchor &device, const std::stop_token &stop)
{
    if (diskCalls().mkdir(folder.c_str(), 0777) != 0) {
        Files::throwFailure(errno, folder);
    }
    const Files::Descriptor to = Files::openFolder(folder).descriptor;
    const Files::Folder settings = device.folder(".rockbox");
    for (const char *const name : savedItems) {
        if (holdsItem(settings.descriptor.get(), name)) {
            Storage::rejectLinks(settings.path / name);
            Storage::copyTree(settings.descriptor.get(), name, to.get(), stop);
        }
        if (stop.stop_requested()) {
            return false;
        }
    }
    writeReadMe(folder, device.root());
    // Thousands of small files: one call for all that the disk has not yet got takes a fraction of the time of one
    // for each file. It also tells of writes that failed since the folder was opened.
    if (diskCalls().syncfs(to.get()) != 0) {
        Files::throwFailure(errno, folder);
    }
    (void)device.require(); // a disk pulled out meanwhile looks like one without themes
    device.requireUnmoved(settings);
    return true;
}

[[noreturn]] void refuseTakenFolder()
{
    throw MarluneError(QStringLiteral("Folder kopii już istnieje."));
}

void nameBackup(const std::filesystem::path &temporary, const std::filesystem::path &target)
{
    if (diskCalls().renameExclusive(AT_FDCWD, temporary.c_str(), AT_FDCWD, target.c_str()) != 0) {
        if (errno == EEXIST) { // by a dangling link, or since it was looked at
            refuseTakenFolder();
        }
        Files::throwFailure(errno, target);
    }
}

} // namespace

namespace Storage {

bool backup(const DeviceAnchor &device, const std::filesystem::path &destination, const std::stop_token &stop)
{
    const std::filesystem::path target = Files::standardized(destination);
    if (liesOn(device.root(), target)) {
        throw MarluneError(QStringLiteral("Zapisz kopię poza iPodem."));
    }
    if (Files::exists(target)) {
        refuseTakenFolder();
    }
    const std::filesystem::path temporary = target.parent_path() / Files::temporaryName("backup-");
    bool isComplete = false;
    try {
        onComputersDisk(target, [&] {
            isComplete = fillBackup(temporary, device, stop);
            if (isComplete) {
                nameBackup(temporary, target);
            }
        });
    } catch (...) {
        removeTree(temporary);
        throw;
    }
    isComplete ? Files::syncName(target) : removeTree(temporary);
    return isComplete;
}

std::optional<std::int64_t> backupSize(const std::filesystem::path &backup, const std::stop_token &stop)
{
    constexpr int maxItems = 1'000'000;
    std::int64_t bytes = 0;
    int items = 0;
    const auto add = [&](const TreeItem &item) {
        if (stop.stop_requested() || ++items > maxItems) {
            Files::throwFailure(ECANCELED);
        }
        struct stat status {};
        if (item.kind == Files::Kind::File
            && ::fstatat(item.folder, item.path.filename().c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
            bytes += status.st_size;
        }
    };
    try {
        forEachBelow(backup, Unreadable::Throw, add);
        return bytes;
    } catch (const std::system_error &) {
        return std::nullopt;
    }
}

} // namespace Storage
