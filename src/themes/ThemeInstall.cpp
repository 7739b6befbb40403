#include "themes/ThemeInstall.h"

#include "themes/Themes.h"

#include "storage/Backup.h"
#include "storage/Device.h"
#include "storage/FileChanges.h"
#include "storage/PathSafety.h"
#include "storage/ScratchFolder.h"
#include "storage/ZipInspection.h"
#include "storage/ZipUnpacking.h"

#include "platform/Files.h"
#include "platform/MarluneError.h"
#include "platform/RegularFile.h"

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

/// All that lies below `folder`, counted from there, a folder before what it holds.
std::vector<std::filesystem::path> itemsBelow(const std::filesystem::path &folder, std::error_code &failure)
{
    std::vector<std::filesystem::path> items;
    std::filesystem::recursive_directory_iterator item(folder, failure);
    for (; !failure && item != std::filesystem::recursive_directory_iterator(); item.increment(failure)) {
        items.emplace_back(item->path().native().substr(folder.native().size() + 1));
    }
    std::sort(items.begin(), items.end());
    return items;
}

void requireAllowed(const std::filesystem::path &item)
{
    const QString text = Files::text(item);
    if (std::find(std::begin(themeFolders), std::end(themeFolders), *item.begin()) == std::end(themeFolders)) {
        throw MarluneError(QStringLiteral("Paczka zawiera pliki poza katalogami motywów: ") + text);
    }
    // The tool's list does not show these as what they are.
    if (text.contains(u'\n') || text.contains(u'\r')) {
        throw MarluneError(QStringLiteral("Paczka ZIP zawiera niebezpieczną ścieżkę."));
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
    std::error_code failure;
    const std::vector<std::filesystem::path> items = itemsBelow(package, failure);
    if (failure) {
        throw MarluneError(QStringLiteral("Nie można odczytać motywu."));
    }
    for (const std::filesystem::path &item : items) {
        requireAllowed(item);
        if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(package / item))) {
            continue;
        }
        files.push_back({package / item, deviceName(item, rules)});
        if (!targets.insert(volumeKey(files.back().target, rules)).second) { // one would overwrite the other
            throw MarluneError(QStringLiteral("Nieprawidłowa lub niebezpieczna paczka ZIP."));
        }
    }
    return files;
}

/// The device's files as they are in the backup, where the items of `.rockbox` stand directly in its folder.
class SavedSettings {
public:
    SavedSettings(std::filesystem::path backup, Volumes::NameRules rules)
        : m_backup(std::move(backup))
        , m_rules(rules)
    {
        std::error_code failure;
        std::vector<std::filesystem::path> items = itemsBelow(m_backup, failure);
        if (failure) {
            throw std::filesystem::filesystem_error("read", m_backup, failure);
        }
        for (std::filesystem::path &item : items) {
            const QString key = volumeKey(item, rules);
            m_items.emplace(key, std::move(item));
        }
    }

    /// As the device spells it: where case does not count, a file that is there keeps its letters.
    [[nodiscard]] std::filesystem::path spelling(const std::filesystem::path &target) const
    {
        const auto found = m_items.find(volumeKey(target, m_rules));
        return found == m_items.end() ? target : found->second;
    }
    [[nodiscard]] std::optional<std::filesystem::path> copyOf(const std::filesystem::path &target) const
    {
        const auto found = m_items.find(volumeKey(target, m_rules));
        return found == m_items.end() ? std::nullopt : std::optional(m_backup / found->second);
    }

private:
    std::filesystem::path m_backup;
    Volumes::NameRules m_rules;
    std::map<QString, std::filesystem::path> m_items;
};

QByteArray contentOf(const std::filesystem::path &file)
{
    const RegularFile source = RegularFile::openOrThrow(file);
    QByteArray bytes(source.size(), Qt::Uninitialized);
    const std::size_t count = source.readAt(0, {bytes.data(), std::size_t(bytes.size())});
    if (std::int64_t(count) < source.size()) {
        const std::error_code failure = source.failure();
        throw std::filesystem::filesystem_error(
            "read", file, failure ? failure : std::error_code(EIO, std::generic_category()));
    }
    return bytes;
}

void writeFiles(const std::vector<PackageFile> &files, const std::filesystem::path &root, const SavedSettings &saved,
    Storage::FileChanges &changes)
{
    for (const PackageFile &file : files) {
        const std::filesystem::path relative = ".rockbox" / saved.spelling(file.target);
        const std::filesystem::path target = Storage::directory(relative.parent_path(), root) / relative.filename();
        const std::filesystem::file_status standing = std::filesystem::symlink_status(target);
        if (is_symlink(standing)) {
            throw MarluneError(QStringLiteral("Docelowy zasób jest dowiązaniem."));
        }
        if (exists(standing) && !saved.copyOf(file.target)) {
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
    if (!Files::exists(package)) {
        throw MarluneError(QStringLiteral("ZIP musi zawierać folder .rockbox (paczka motywu Rockbox)."));
    }
    const std::size_t count = themes(unpacked).size();
    if (count == 0) {
        throw MarluneError(QStringLiteral("Paczka nie zawiera motywu .cfg w .rockbox/themes."));
    }
    const Volumes::NameRules rules = Volumes::nameRules(root);
    const std::vector<PackageFile> files = planFiles(package, rules);
    backup(root, backupFolder);

    const SavedSettings saved(backupFolder, rules);
    const auto copyOf
        = [&](const std::filesystem::path &file) { return saved.copyOf(file.lexically_relative(root / ".rockbox")); };
    FileChanges changes(root, copyOf, Files::Durability::Later);
    writeFiles(files, root, saved, changes);
    scratch.remove(); // what is removed need not be brought to the medium
    changes.keep();
    return int(count);
}

} // namespace Storage
