#include "platform/files/FileStamp.h"

#include <sys/stat.h>

std::optional<FileStamp> FileStamp::of(const std::filesystem::path &file)
{
    struct stat status {};
    if (::lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const auto nanoseconds = [](const timespec &time) { return time.tv_sec * 1'000'000'000 + time.tv_nsec; };
    return FileStamp {.volume = status.st_dev,
        .inode = status.st_ino,
        .size = status.st_size,
        .modified = nanoseconds(status.st_mtim),
        .changed = nanoseconds(status.st_ctim)};
}
