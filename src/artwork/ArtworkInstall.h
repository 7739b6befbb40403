// Puts one finished cover beside the music of one album on the device, where the firmware looks for it.
//
// Either the cover is in all of the album's folders afterwards, or the files are as they were: every place is
// checked before the first is written, what will change is copied to the computer, and a failure half way is undone.
// Blocking; no state; any thread but the UI's; no two installs on one device at a time.
#pragma once

#include "storage/DeviceAnchor.h"

#include "platform/volumes/Volumes.h"

#include <QByteArray>

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace Artwork {

struct InstallPlan {
    std::vector<std::filesystem::path> targets; ///< files that become the new image
    std::vector<std::filesystem::path> stale; ///< images of single tracks that a folder's cover replaces

    bool operator==(const InstallPlan &) const = default;
};

/// What a plan asks of the disk.
struct InstallView {
    /// The items directly in a folder; none if it cannot be listed.
    std::function<std::vector<std::filesystem::path>(const std::filesystem::path &folder)> items;
    /// Absent for a link and for what cannot be read.
    std::function<std::optional<QByteArray>(const std::filesystem::path &file)> content;
};

/// A folder whose music is all among `tracks` gets a "cover.jpeg", and a track's own image ("NAME.jpeg") goes if it
/// shows the old cover or the new one; any other is the user's and stays. In a folder shared with other music each of
/// the tracks gets its own image. Where the volume ignores case, so does every comparison of names.
[[nodiscard]] InstallPlan planInstall(const QByteArray &data, std::span<const std::filesystem::path> tracks,
    Volumes::NameRules rules, const InstallView &view);

/// Makes and carries out the plan for the album of these `tracks` on the device. `data` is written as it is.
/// What was at the changed places is copied to a new folder "Covers-UUID" with a manifest under `backupRoot`, which
/// stays in every case. The metadata files that macOS left beside the targets are removed.
/// Throws MarluneError (no track, no device, a place outside the device or behind a link) or the system's failure.
void install(const QByteArray &data, std::span<const std::filesystem::path> tracks, const Storage::DeviceAnchor &device,
    const std::filesystem::path &backupRoot);

} // namespace Artwork
