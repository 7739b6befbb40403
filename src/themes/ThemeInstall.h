// Installs a theme's package, a ZIP archive from the network, on a device.
//
// The package is looked at from all sides in a scratch folder, and the device's settings are backed up, before the
// first byte is written to the device. From then on all files of the package get there, or the device is put back as it
// was. Blocking; no state; any thread but the UI's.
#pragma once

#include <filesystem>

namespace Storage {

/// Copies what the archive `zip` holds below `.rockbox` to the device at `root`, over files of the same names, after a
/// backup to `backupFolder`, which must not exist yet. Returns the number of themes in the package. When it does, all
/// of it is on the medium.
/// Throws MarluneError or the system's failure. The device is then as it was before, save for new empty folders; if the
/// failure came after the backup, that stays.
int installTheme(
    const std::filesystem::path &zip, const std::filesystem::path &root, const std::filesystem::path &backupFolder);

} // namespace Storage
