#include "platform/files/FileStamp.h"

namespace {

FileStamp stampOf(const struct stat &status)
{
    const auto nanoseconds = [](const timespec &time) { return time.tv_sec * 1'000'000'000 + time.tv_nsec; };
    return {.volume = status.st_dev,
        .inode = status.st_ino,
        .size = status.st_size,
        .modified = nanoseconds(status.st_mtim),
        .changed = nanoseconds(status.st_ctim)};
}

} // namespace

std::optional<FileStamp> FileStamp::from(const struct stat &status)
{
    return S_ISREG(status.st_mode) ? std::optional(stampOf(status)) : std::nullopt;
}

std::optional<FileStamp> FileStamp::of(const std::filesystem::path &file, int folder)
{
    struct stat status {};
    return ::fstatat(folder, file.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 ? from(status) : std::nullopt;
}

std::optional<FileStamp> FileStamp::ofFolder(const std::filesystem::path &folder)
{
    struct stat status {};
    const bool isFolder = ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return isFolder ? std::optional(stampOf(status)) : std::nullopt;
}
