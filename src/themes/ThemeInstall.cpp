#include "themes/ThemeInstall.h"

#include "themes/Themes.h"

#include "storage/Backup.h"
#include "storage/DeviceAnchor.h"
#include "storage/DiskSpelling.h"
#include "storage/FileChanges.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"
#include "storage/ScratchFolder.h"
#include "storage/ZipInspection.h"
#include "storage/ZipUnpacking.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

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

[[noreturn]] void throwUnreadable()
{
    throw MarluneError(QStringLiteral("Nie można odczytać motywu."));
}

Items itemsOfPackage(const std::filesystem::path &package)
{
    try {
        return itemsBelow(package);
    } catch (const std::system_error &) {
        throwUnreadable();
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
std::vector<PackageFile> planFiles(const Storage::UnpackedZip &unpacked, Volumes::NameRules rules)
{
    const std::filesystem::path package = unpacked.folder / ".rockbox";
    std::set<std::filesystem::path> missing = unpacked.files; // something may have gone from the scratch folder since
    std::erase_if(missing, [](const std::filesystem::path &file) { return *file.begin() != ".rockbox"; });
    std::vector<PackageFile> files;
    std::set<QString> targets;
    for (const auto &[item, kind] : itemsOfPackage(package)) {
        requireAllowed(item, kind);
        if (kind != Files::Kind::File) {
            continue;
        }
        if (missing.erase(".rockbox" / item) == 0) {
            throwUnreadable();
        }
        files.push_back({package / item, deviceName(item, rules)});
        if (!targets.insert(volumeKey(files.back().target, rules)).second) { // one would overwrite the other
            Storage::refusePackage();
        }
    }
    if (!missing.empty()) {
        throwUnreadable();
    }
    return files;
}

/// A folder could neither be replaced nor put back in one step.
void requireNoFolders(const std::vector<PackageFile> &files, const std::filesystem::path &settings)
{
    for (const PackageFile &file : files) {
        if (Files::kindOf(settings / file.target) == Files::Kind::Folder) {
            throw MarluneError(QStringLiteral("Plik jest zajęty przez folder: ") + Files::name(file.target));
        }
    }
}

/// The device's files as they are in the backup, where the items of `.rockbox` are directly in its folder.
class SavedSettings {
public:
    SavedSettings(const std::filesystem::path &backup, std::filesystem::path device, Volumes::NameRules rules)
        : m_spelling(std::move(device), rules)
    {
        for (const auto &[item, kind] : itemsBelow(backup)) {
            const std::filesystem::path top = *item.begin(); // as the backup names it, not the device
            m_copies.emplace(m_spelling.of(top) / item.lexically_relative(top), backup / item);
        }
    }

    /// As the device spells it: where case does not count, a file that is there keeps its letters.
    [[nodiscard]] std::filesystem::path spelling(const std::filesystem::path &target) const
    {
        return m_spelling.of(target);
    }
    /// Of a file as it is spelled on the device.
    [[nodiscard]] std::optional<std::filesystem::path> copyOf(const std::filesystem::path &target) const
    {
        const auto found = m_copies.find(target);
        return found == m_copies.end() ? std::nullopt : std::optional(found->second);
    }

private:
    Storage::DiskSpelling m_spelling; ///< in the device's `.rockbox`
    std::map<std::filesystem::path, std::filesystem::path> m_copies; ///< by what they are called on the device
};

/// A folder can have a theme's name, too.
int countThemes(const std::filesystem::path &unpacked)
{
    const std::vector<Theme> themes = Storage::themes(unpacked);
    return int(std::count_if(themes.begin(), themes.end(),
        [](const Theme &theme) { return Files::kindOf(theme.url) == Files::Kind::File; }));
}

void writeFiles(const std::vector<PackageFile> &files, const std::filesystem::path &settings,
    const SavedSettings &saved, Storage::FileChanges &changes)
{
    for (const PackageFile &file : files) {
        changes.write(Files::readWhole(file.source), settings / saved.spelling(file.target),
            Storage::DeviceAnchor::Missing::Make);
    }
}

} // namespace

namespace Storage {

int installTheme(
    const std::filesystem::path &zip, const std::filesystem::path &root, const std::filesystem::path &backupFolder)
{
    const DeviceAnchor device(root); // before the first look at its files
    inspectZip(zip);
    ScratchFolder scratch;
    const UnpackedZip unpacked = unpackZip(zip, scratch.path());
    if (Files::kindOf(unpacked.folder / ".rockbox") == Files::Kind::None) {
        throw MarluneError(QStringLiteral("ZIP musi zawierać folder .rockbox (paczka motywu Rockbox)."));
    }
    const int count = countThemes(unpacked.folder);
    if (count == 0) {
        throw MarluneError(QStringLiteral("Paczka nie zawiera motywu .cfg w .rockbox/themes."));
    }
    const Volumes::NameRules rules = Volumes::nameRules(root);
    const std::vector<PackageFile> files = planFiles(unpacked, rules);
    requireNoFolders(files, root / ".rockbox");
    (void)backup(device, backupFolder);

    const std::filesystem::path settings = device.root() / ".rockbox";
    const SavedSettings saved(backupFolder, settings, rules);
    const auto copyOf
        = [&](const std::filesystem::path &file) { return saved.copyOf(file.lexically_relative(settings)); };
    FileChanges changes(device, copyOf, Files::Durability::Later);
    try {
        writeFiles(files, settings, saved, changes);
        scratch.remove(); // what is removed need not be brought to the medium
        changes.keep();
    } catch (...) {
        changes.undoAndRethrow(backupFolder);
    }
    return count;
}

} // namespace Storage
