// Copies on the computer of files that are about to be replaced or removed on a device.
//
// Each set has a folder of its own. Its manifest.json, a JSON object on one line, gives for each copy's name the path
// of the file that it was made of, for a person who wants to put files back. Blocking; no state; any thread but the
// UI's.
#pragma once

#include "platform/files/Files.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stop_token>

namespace Storage {

/// How a set is named: its folder is the prefix and a new UUID, a copy is a new UUID and the suffix.
struct SavedNames {
    QString folderPrefix;
    QString fileSuffix;
};

struct SavedFiles {
    std::filesystem::path folder;
    std::map<std::filesystem::path, std::filesystem::path> copies; ///< by the path of the file saved

    /// Absent for a file that is not in the set.
    [[nodiscard]] std::optional<std::filesystem::path> copyOf(const std::filesystem::path &file) const;
};

/// Opens a file to be copied, for reading; throws where it is no regular file.
using OpenFile = std::function<Files::Descriptor(const std::filesystem::path &file)>;
/// Follows no link at the file's own name.
[[nodiscard]] Files::Descriptor openUnlinked(const std::filesystem::path &file);

/// Copies `files`, of whatever size, into a new folder under `backupRoot`, which is made with its parents if missing.
/// When this returns, the copies, the manifest and the folders' entries for them are on the medium. Once `stop` is
/// requested, these are fewer copies.
/// Throws at the first failure, also for what is no regular file: MarluneError where the computer's disk is full,
/// otherwise std::system_error. The incomplete folder stays.
[[nodiscard]] SavedFiles saveFiles(std::span<const std::filesystem::path> files,
    const std::filesystem::path &backupRoot, const SavedNames &names, const OpenFile &open = openUnlinked,
    const std::stop_token &stop = {});

} // namespace Storage
