// Writes playlists for the firmware, which reads their paths from the device's root, and counts what is in one.
//
// A playlist is never replaced, and a failure leaves none half written. Blocking; no state; any thread but the UI's.
#pragma once

#include <QString>

#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>

namespace Storage {

/// Writes Playlists/NAME.m3u8 on the device at `root`: extended M3U in UTF-8, a path a line, no other directives.
/// The tracks go in as they come, neither sorted nor made unique, and must lie on the device. `name` passes safeName()
/// and volumeName(). Returns the file. Throws MarluneError or std::system_error; then only the folder may be new.
[[nodiscard]] std::filesystem::path playlist(
    const QString &name, std::span<const std::filesystem::path> tracks, const std::filesystem::path &root);

/// How many tracks a playlist of any origin has for the firmware: its lines that are neither empty nor a comment.
/// Reads a piece at a time, so that it ends soon once `stop` is requested. Absent then, and for what is no regular file
/// (a link is none), cannot be read to its end or is larger than any playlist. Never throws.
[[nodiscard]] std::optional<std::int64_t> playlistLength(
    const std::filesystem::path &file, const std::stop_token &stop);

} // namespace Storage
