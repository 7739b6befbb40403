#include "storage/Backup.h"

#include "storage/ComputerDisk.h"
#include "storage/Device.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"

#include "platform/DiskCalls.h"
#include "platform/Files.h"
#include "platform/MarluneError.h"

#include <QDateTime>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

/// They stand directly in a backup, which a roll-back relies on.
constexpr const char *savedItems[]
    = {"config.cfg", "themes", "wps", "sbs", "fonts", "icons", "backdrops", "eqs", "fmpresets"};

/// Both by its name and by where it really is: a link to the device leads onto it, and so does its name in other
/// letters where case does not count.
bool liesOn(const std::filesystem::path &root, const std::filesystem::path &destination)
{
    const std::filesystem::path base = Files::standardised(root);
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

/// Makes the folder. Returns when all of it is on the medium.
void fillBackup(const std::filesystem::path &folder, const std::filesystem::path &root)
{
    if (diskCalls().mkdir(folder.c_str(), 0777) != 0) {
        Files::throwFailure(errno, folder);
    }
    const Files::Descriptor to = Files::openFolder(folder).descriptor;
    const Files::Descriptor device = Files::openFolder(root).descriptor;
    const Files::Descriptor from = Files::openFolder(".rockbox", device.get()).descriptor;
    for (const char *const name : savedItems) {
        if (holdsItem(from.get(), name)) {
            Storage::rejectLinks(root / ".rockbox" / name);
            Storage::copyTree(from.get(), name, to.get());
        }
    }
    writeReadMe(folder, root);
    // Thousands of small files: one call for all that the disk has not yet got takes a fraction of the time of one
    // for each file. It also tells of writes that failed since the folder was opened.
    if (diskCalls().syncfs(to.get()) != 0) {
        Files::throwFailure(errno, folder);
    }
}

[[noreturn]] void refuseTakenName()
{
    throw MarluneError(QStringLiteral("Folder kopii już istnieje."));
}

void nameBackup(const std::filesystem::path &temporary, const std::filesystem::path &target)
{
    if (diskCalls().renameExclusive(temporary.c_str(), target.c_str()) != 0) {
        if (errno == EEXIST) { // by a dangling link, or since it was looked at
            refuseTakenName();
        }
        Files::throwFailure(errno, target);
    }
}

} // namespace

namespace Storage {

void backup(const std::filesystem::path &root, const std::filesystem::path &destination)
{
    (void)Device::inspect(root);
    const std::filesystem::path target = Files::standardised(destination);
    if (liesOn(root, target)) {
        throw MarluneError(QStringLiteral("Zapisz kopię poza iPodem."));
    }
    if (Files::exists(target)) {
        refuseTakenName();
    }
    const std::filesystem::path temporary = target.parent_path() / Files::temporaryName("backup-");
    try {
        onComputersDisk(target, [&] {
            fillBackup(temporary, root);
            (void)Device::inspect(root); // a disk pulled out meanwhile looks like one without themes
            nameBackup(temporary, target);
        });
    } catch (...) {
        removeTree(temporary);
        throw;
    }
    Files::synchroniseName(target);
}

} // namespace Storage
