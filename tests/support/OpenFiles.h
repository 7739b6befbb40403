// Which files the test's process holds open.
#pragma once

#include <filesystem>
#include <vector>

inline std::vector<std::filesystem::path> openFilesBelow(const std::filesystem::path &folder)
{
    std::vector<std::filesystem::path> result;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::filesystem::path file = std::filesystem::read_symlink(entry, gone);
        if (!gone && file.native().starts_with(folder.native() + "/")) {
            result.push_back(file);
        }
    }
    return result;
}
