// Which files the test's process holds open.
#pragma once

#include "Names.h"

#include <vector>

inline std::vector<fs::path> openFilesBelow(const fs::path &folder)
{
    std::vector<fs::path> result;
    for (const auto &entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const fs::path file = fs::read_symlink(entry, gone);
        if (!gone && file.native().starts_with(folder.native() + "/")) {
            result.push_back(file);
        }
    }
    return result;
}
