// Finds audio files below files and folders of the user's choice. Blocking; any thread but the UI's; never throws.
#pragma once

#include "platform/files/FileStamp.h"

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <stop_token>
#include <vector>

struct AudioFile {
    std::filesystem::path path;
    std::optional<FileStamp> stamp; ///< where it was asked for on the way
};

/// What a search found.
struct AudioFound {
    std::vector<AudioFile> files; ///< in the order of discovery; may hold one file twice
    std::size_t present = 0; ///< how many of the given files and folders there are
    std::set<dev_t> volumes; ///< that those lie on
    bool isAsGiven = false; ///< `files` are what was given, one for one
};
/// What is given by name and is not there counts as found, or is passed over.
enum class Missing : std::uint8_t { Keep, Skip };
[[nodiscard]] AudioFound findAudio(
    std::vector<std::filesystem::path> urls, const std::stop_token &stop = {}, Missing missing = Missing::Keep);

/// How many folders or files on these disks are best read at once.
[[nodiscard]] int readersAtOnce(const std::set<dev_t> &volumes);

/// The audio files among `urls` and in the folders among them, at any depth. Symbolic links and hidden items are passed
/// over; what cannot be read contributes nothing. In the order of `urls`, and in a folder of the names; may hold one
/// file twice. Once `stop` is requested, these are not all of them.
[[nodiscard]] std::vector<std::filesystem::path> scanAudio(
    std::vector<std::filesystem::path> urls, const std::stop_token &stop = {});

/// The folders directly in a device's root that can hold music: not hidden, and none of those that the first firmware
/// and other systems keep there.
[[nodiscard]] std::vector<std::filesystem::path> deviceMusicFolders(const std::filesystem::path &root);
