#include "artwork/ArtworkInstall.h"

#include "library/AudioExtensions.h"

#include "storage/FileChanges.h"
#include "storage/MacMetadata.h"
#include "storage/PathSafety.h"
#include "storage/SavedFiles.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/files/FolderItems.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <map>
#include <set>

namespace {

using Paths = std::vector<std::filesystem::path>;

/// Bytes. What is larger is no cover to compare with; it is saved all the same before it is replaced.
constexpr std::int64_t comparedCoverLimit = 50'000'000;

/// Paths in the order given, each file once.
class PathSet {
public:
    explicit PathSet(Volumes::NameRules rules)
        : m_rules(rules)
    {
    }

    [[nodiscard]] bool contains(const std::filesystem::path &path) const
    {
        return m_keys.contains(volumeKey(path, m_rules));
    }
    void add(const std::filesystem::path &path)
    {
        if (m_keys.insert(volumeKey(path, m_rules)).second) {
            m_paths.push_back(path);
        }
    }
    [[nodiscard]] const Paths &paths() const { return m_paths; }

private:
    Volumes::NameRules m_rules;
    std::set<QString> m_keys;
    Paths m_paths;
};

/// The image of one track: its path with another extension.
std::filesystem::path sidecarOf(std::filesystem::path track)
{
    return track.replace_extension(".jpeg");
}

/// Those that show nothing but the folder's old cover or the new one.
Paths replacedSidecars(const QByteArray &data, std::span<const std::filesystem::path> tracks,
    const std::filesystem::path &cover, const Artwork::InstallView &view)
{
    const std::optional<QByteArray> oldCover = view.content(cover);
    Paths sidecars;
    for (const std::filesystem::path &track : tracks) {
        const std::filesystem::path sidecar = sidecarOf(track);
        const std::optional<QByteArray> image = view.content(sidecar);
        if (image && (image == oldCover || image == data)) {
            sidecars.push_back(sidecar);
        }
    }
    return sidecars;
}

bool isVisibleAudio(const std::filesystem::path &item)
{
    return !item.filename().native().starts_with('.') && hasAudioExtension(item);
}

Paths itemsOnDisk(const std::filesystem::path &folder)
{
    Paths items;
    for (const Files::FolderItem &item : Files::readableItemsOf(folder)) {
        items.push_back(folder / item.name);
    }
    return items;
}

std::optional<QByteArray> contentOnDisk(const std::filesystem::path &file)
{
    return isSymbolicLink(file) ? std::nullopt : Files::readBelow(file, comparedCoverLimit);
}

/// Where on the device the file is that may be changed, with no link on the way.
std::filesystem::path placeOf(const std::filesystem::path &file, const std::filesystem::path &root)
{
    const std::optional<std::filesystem::path> place = Storage::pathBelow(file, root);
    if (!place || isSymbolicLink(file) || isSymbolicLink(file.parent_path())) {
        throw MarluneError(QStringLiteral("Okładka musi być zapisana w folderze muzyki na wybranym iPodzie."));
    }
    return root / *place;
}

/// Throws if that cannot be known: what might be there must not be overwritten unsaved.
bool stands(const std::filesystem::path &file)
{
    return Files::kindOf(file) != Files::Kind::None;
}

} // namespace

namespace Artwork {

InstallPlan planInstall(const QByteArray &data, std::span<const std::filesystem::path> tracks, Volumes::NameRules rules,
    const InstallView &view)
{
    PathSet selected(rules);
    std::map<QString, Paths> folders; // the tracks of each
    for (const std::filesystem::path &track : tracks) {
        selected.add(track);
        folders[volumeKey(track.parent_path(), rules)].push_back(track);
    }
    PathSet targets(rules);
    PathSet stale(rules);
    for (const auto &[key, own] : folders) {
        const std::filesystem::path folder = own.front().parent_path();
        const Paths items = view.items(folder);
        const bool isShared = std::any_of(items.begin(), items.end(),
            [&](const std::filesystem::path &item) { return isVisibleAudio(item) && !selected.contains(item); });
        if (isShared) {
            std::for_each(own.begin(), own.end(), [&](const auto &track) { targets.add(sidecarOf(track)); });
            continue;
        }
        const std::filesystem::path cover = folder / "cover.jpeg";
        targets.add(cover);
        for (const std::filesystem::path &sidecar : replacedSidecars(data, own, cover, view)) {
            if (!targets.contains(sidecar)) { // a track named "cover" has the folder's own
                stale.add(sidecar);
            }
        }
    }
    return {targets.paths(), stale.paths()};
}

void install(const QByteArray &data, std::span<const std::filesystem::path> tracks, const Storage::DeviceAnchor &device,
    const std::filesystem::path &backupRoot)
{
    const std::filesystem::path &root = device.root();
    (void)device.require();
    if (tracks.empty()) {
        throw MarluneError(QStringLiteral("Album nie ma utworów."));
    }
    InstallPlan plan = planInstall(data, tracks, Volumes::nameRules(root), {itemsOnDisk, contentOnDisk});
    Paths standing;
    for (Paths *const files : {&plan.targets, &plan.stale}) {
        for (std::filesystem::path &file : *files) {
            file = placeOf(file, root);
        }
        std::copy_if(files->begin(), files->end(), std::back_inserter(standing), stands);
    }
    const Storage::SavedFiles saved
        = Storage::saveFiles(standing, backupRoot, {QStringLiteral("Covers-"), QStringLiteral(".jpg")});

    Storage::FileChanges changes(device, [&saved](const std::filesystem::path &file) { return saved.copyOf(file); });
    try {
        for (const std::filesystem::path &target : plan.targets) {
            changes.write(data, target);
        }
        for (const std::filesystem::path &sidecar : plan.stale) {
            changes.remove(sidecar);
        }
        Storage::cleanupMacMetadata(device, backupRoot, plan.targets);
        changes.keep();
    } catch (...) {
        changes.undoAndRethrow(saved.folder);
    }
}

} // namespace Artwork
