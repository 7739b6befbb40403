// What others do with the same files.
#pragma once

#include <filesystem>
#include <vector>

namespace Peers {

/// Reads properties, tags and pictures of each file with TagLib, one after the other. Returns a sum of what was read,
/// so that nothing of it is left out.
[[nodiscard]] std::size_t scan(const std::vector<std::filesystem::path> &files);

/// The same for FLAC files through TagLib's own FLAC reader.
[[nodiscard]] std::size_t scanFlac(const std::vector<std::filesystem::path> &files);

} // namespace Peers
