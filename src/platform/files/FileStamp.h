// What tells a file that has not changed from one that has.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>

struct FileStamp {
    dev_t volume = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0; ///< bytes
    std::int64_t modified = 0; ///< of its content; nanoseconds since 1970
    std::int64_t changed = 0; ///< of anything about it; no program can set it

    bool operator==(const FileStamp &) const = default;

    /// Of a file that has been asked for; absent for what is no regular file.
    [[nodiscard]] static std::optional<FileStamp> from(const struct stat &status);
    /// Absent for what is no regular file, a link too, and for what cannot be asked. Blocking; any thread.
    /// A relative path counts from the open folder.
    [[nodiscard]] static std::optional<FileStamp> of(const std::filesystem::path &file, int folder = AT_FDCWD);
    /// Of a folder, a link to one too: what it holds is the same names while its stamp is the same, save on FAT.
    [[nodiscard]] static std::optional<FileStamp> ofFolder(const std::filesystem::path &folder);
};
