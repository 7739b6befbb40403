// Finds audio files below files and folders of the user's choice. Blocking; any thread but the UI's; never throws.
#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

/// The audio files among `urls` and in the folders among them, at any depth. Symbolic links and hidden items are passed
/// over; what cannot be read contributes nothing. Order of discovery; may hold one file twice. Once `stop` is
/// requested, these are not all of them.
[[nodiscard]] std::vector<std::filesystem::path> scanAudio(
    const std::vector<std::filesystem::path> &urls, const std::stop_token &stop = {});

/// The folders directly in a device's root that can hold music: not hidden, and none of those that the first firmware
/// and other systems keep there.
[[nodiscard]] std::vector<std::filesystem::path> deviceMusicFolders(const std::filesystem::path &root);
