#include "themes/ThemeInstall.h"

#include "themes/Themes.h"

#include "storage/Backup.h"
#include "storage/Device.h"
#include "storage/FileChanges.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"
#include "storage/ScratchFolder.h"
#include "storage/ZipInspection.h"
#include "storage/ZipUnpacking.h"

#include "platform/Files.h"
#include "platform/MarluneError.h"
#include "platform/RegularFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

/// What a package may touch under `.rockbox`.
constexpr const char *themeFolders[] = {"themes", "wps", "sbs", "fonts", "icons", "backdrops"};

/// One file of the package; where it goes is counted from the device's `.rockbox`.
struct PackageFile {
    std::filesystem::path source;
    std::filesystem::path target;
};

/// What lies below a folder, counted from there, a folder before what it holds.
using Items = std::map<std::filesystem::path, Files::Kind>;

Items itemsBelow(const std::filesystem::path &folder)
{
    Items items;
    Storage::forEachBelow(folder, Storage::Unreadable::Throw, [&](const Storage::TreeItem &item) {
        items.emplace(item.path.native().substr(folder.native().size() + 1), item.kind);
    });
    return items;
}

Items itemsOfPackage(const std::filesystem::path &package)
{
    try {
        return itemsBelow(package);
    } catch (const std::system_error &) {
        throw MarluneError(QStringLiteral("Nie można odczytać motywu."));
    }
}

void requireAllowed(const std::filesystem::path &item, Files::Kind kind)
{
    const QString text = Files::text(item);
    const bool isTop = !item.has_parent_path();
    if ((isTop && kind != Files::Kind::Folder)
        || std::find(std::begin(themeFolders), std::end(themeFolders), *item.begin()) == std::end(themeFolders)) {
        throw MarluneError(QStringLiteral("Paczka zawiera pliki poza katalogami motywów: ") + text);
    }
}

std::filesystem::path deviceName(const std::filesystem::path &item, Volumes::NameRules rules)
{
    std::filesystem::path result;
    for (const std::filesystem::path &piece : item) {
        result /= Files::fromText(volumeName(Files::text(piece), rules));
    }
    return result;
}

/// Accepts the package, or says what is wrong with it. Folders are not installed for themselves.
std::vector<PackageFile> planFiles(const std::filesystem::path &package, Volumes::NameRules rules)
{
    std::vector<PackageFile> files;
    std::set<QString> targets;
    for (const auto &[item, kind] : itemsOfPackage(package)) {
        requireAllowed(item, kind);
        if (kind != Files::Kind::File) {
            continue;
        }
        files.push_back({package / item, deviceName(item, rules)});
        if (!targets.insert(volumeKey(files.back().target, rules)).second) { // one would overwrite the other
            throw MarluneError(QStringLiteral("Nieprawidłowa lub niebezpieczna paczka ZIP."));
        }
    }
    return files;
}

using Status = struct stat;

bool hasSameNumber(const Status &a, const Status &b)
{
    return a.st_ino == b.st_ino;
}

/// Drivers in user space give each spelling of a name a number of its own.
bool looksTheSame(const Status &a, const Status &b)
{
    return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

bool isSame(
    const std::filesystem::path &one, const std::filesystem::path &other, bool (*same)(const Status &, const Status &))
{
    Status a {};
    Status b {};
    return ::lstat(one.c_str(), &a) == 0 && ::lstat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev && same(a, b);
}

/// The device's files as they are in the backup, where the items of `.rockbox` stand directly in its folder.
class SavedSettings {
public:
    SavedSettings(std::filesystem::path backup, std::filesystem::path device, Volumes::NameRules rules)
        : m_backup(std::move(backup))
        , m_device(std::move(device))
        , m_rules(rules)
        , m_items(itemsBelow(m_backup))
    {
        for (const auto &item : m_items) {
            m_byKey.emplace(volumeKey(item.first, rules), item.first);
        }
    }

    /// As the device spells it: where case does not count, a file that is there keeps its letters. The disk decides
    /// what is the same name to it; its table of letters is not ours.
    [[nodiscard]] std::filesystem::path spelling(const std::filesystem::path &target) const
    {
        if (m_items.contains(target)) {
            return target;
        }
        const auto [begin, end] = m_byKey.equal_range(volumeKey(target, m_rules));
        for (const auto &same : {hasSameNumber, looksTheSame}) {
            const auto found = std::find_if(
                begin, end, [&](const auto &item) { return isSame(m_device / item.second, m_device / target, same); });
            if (found != end) {
                return found->second;
            }
        }
        return target;
    }
    /// Of a file as it is spelled on the device.
    [[nodiscard]] std::optional<std::filesystem::path> copyOf(const std::filesystem::path &target) const
    {
        return m_items.contains(target) ? std::optional(m_backup / target) : std::nullopt;
    }

private:
    std::filesystem::path m_backup;
    std::filesystem::path m_device; ///< its `.rockbox`
    Volumes::NameRules m_rules;
    Items m_items;
    std::multimap<QString, std::filesystem::path> m_byKey;
};

QByteArray contentOf(const std::filesystem::path &file)
{
    const RegularFile source = RegularFile::openOrThrow(file);
    QByteArray bytes(source.size(), Qt::Uninitialized);
    const std::size_t count = source.readAt(0, {bytes.data(), std::size_t(bytes.size())});
    if (std::int64_t(count) < source.size()) {
        Files::throwFailure(source.failure() ? source.failure().value() : EIO, file);
    }
    return bytes;
}

/// A folder can have a theme's name, too.
int countThemes(const std::filesystem::path &unpacked)
{
    const std::vector<Theme> themes = Storage::themes(unpacked);
    return int(std::count_if(themes.begin(), themes.end(),
        [](const Theme &theme) { return Files::kindOf(theme.url) == Files::Kind::File; }));
}

void writeFiles(const std::vector<PackageFile> &files, const std::filesystem::path &root, const SavedSettings &saved,
    Storage::FileChanges &changes)
{
    for (const PackageFile &file : files) {
        const std::filesystem::path item = saved.spelling(file.target);
        const std::filesystem::path folder = Storage::directory(".rockbox" / item.parent_path(), root);
        const std::filesystem::path target = folder / item.filename();
        const Files::Kind standing = Files::kindOf(target);
        if (standing == Files::Kind::Link) {
            throw MarluneError(QStringLiteral("Docelowy zasób jest dowiązaniem."));
        }
        if (standing != Files::Kind::None && !saved.copyOf(item)) {
            throw MarluneError(QStringLiteral("Na iPodzie pojawił się plik bez kopii: ") + Files::name(target));
        }
        changes.write(contentOf(file.source), target);
    }
}

} // namespace

namespace Storage {

int installTheme(
    const std::filesystem::path &zip, const std::filesystem::path &root, const std::filesystem::path &backupFolder)
{
    (void)Device::inspect(root);
    inspectZip(zip);
    ScratchFolder scratch;
    const std::filesystem::path unpacked = unpackZip(zip, scratch.path());
    const std::filesystem::path package = unpacked / ".rockbox";
    if (Files::kindOf(package) == Files::Kind::None) {
        throw MarluneError(QStringLiteral("ZIP musi zawierać folder .rockbox (paczka motywu Rockbox)."));
    }
    const int count = countThemes(unpacked);
    if (count == 0) {
        throw MarluneError(QStringLiteral("Paczka nie zawiera motywu .cfg w .rockbox/themes."));
    }
    const Volumes::NameRules rules = Volumes::nameRules(root);
    const std::vector<PackageFile> files = planFiles(package, rules);
    backup(root, backupFolder);

    const SavedSettings saved(backupFolder, root / ".rockbox", rules);
    const auto copyOf
        = [&](const std::filesystem::path &file) { return saved.copyOf(file.lexically_relative(root / ".rockbox")); };
    FileChanges changes(root, copyOf, Files::Durability::Later);
    try {
        writeFiles(files, root, saved, changes);
        scratch.remove(); // what is removed need not be brought to the medium
        changes.keep();
    } catch (...) {
        changes.undoAndRethrow(backupFolder);
    }
    return count;
}

} // namespace Storage
