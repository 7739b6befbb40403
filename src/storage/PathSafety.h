// What may serve as a name on a device, and which paths may be walked and written without leaving it.
//
// Blocking, no state, any thread but the UI's.
#pragma once

#include "platform/volumes/Volumes.h"

#include <QString>

#include <filesystem>
#include <optional>

/// Whether the item itself is a symbolic link; false also where it cannot be queried.
[[nodiscard]] bool isSymbolicLink(const std::filesystem::path &path);

/// Turns one untrusted text into one path component, never empty: path separators, colons and line ends become "-",
/// outer white space goes, "." and ".." and nothing become "Bez nazwy", and 160 characters stay. It knows nothing of
/// extensions: a longer file name loses its own.
[[nodiscard]] QString safeName(const QString &name);

/// The second step for a name on a volume with these rules. On FAT and exFAT it does what the firmware does when it
/// looks for a cover by its album's name: `"` becomes `'`, each of * : < > ? \ | and every control character becomes
/// "_", trailing dots and blanks go; what is longer than 255 UTF-16 units is cut. Elsewhere the name stays.
/// `ending` belongs to the name, but the cut is made before it, so that numbered names stay distinct.
[[nodiscard]] QString volumeName(const QString &name, Volumes::NameRules rules, const QString &ending = {});

/// Equal for two paths that mean one file on a volume with these rules: on FAT and exFAT case does not count.
[[nodiscard]] QString volumeKey(const std::filesystem::path &path, Volumes::NameRules rules);

namespace Storage {

/// Where `path`, with all links on its way resolved, lies below the folder `root`, counted from there. It need not
/// exist; what cannot be resolved lies nowhere.
[[nodiscard]] std::optional<std::filesystem::path> pathBelow(
    const std::filesystem::path &path, const std::filesystem::path &root);
[[nodiscard]] bool liesBelow(const std::filesystem::path &path, const std::filesystem::path &root);

/// Refuses a tree that holds any symbolic link, at any depth, hidden or dangling. Items that cannot be queried are
/// passed over. Throws MarluneError.
void rejectLinks(const std::filesystem::path &path);

} // namespace Storage
