// Writes playlists for the firmware, which reads their paths from the device's root.
//
// A playlist is never replaced, and a failure leaves none half written. Blocking; no state; any thread but the UI's.
#pragma once

#include <QString>

#include <filesystem>
#include <span>

namespace Storage {

/// Writes Playlists/NAME.m3u8 on the device at `root`: extended M3U in UTF-8, a path a line, no other directives.
/// The tracks go in as they come, neither sorted nor made unique, and must lie on the device. `name` passes safeName()
/// and volumeName(). Returns the file. Throws MarluneError or std::system_error; then only the folder may be new.
[[nodiscard]] std::filesystem::path playlist(
    const QString &name, std::span<const std::filesystem::path> tracks, const std::filesystem::path &root);

} // namespace Storage
