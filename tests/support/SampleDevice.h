// A test folder that is a device, and what lies below a folder.
#pragma once

#include "TemporaryFolder.h"

#include <algorithm>
#include <map>
#include <string>

inline void makeDevice(const TemporaryFolder &folder, const fs::path &relative = {})
{
    folder.write(relative / ".rockbox/rockbox-info.txt", "Target: ipodvideo\nVersion: 3.15\nBinary size: 774144\n");
}

/// All regular files below `folder` by relative path, hidden ones too, with their bytes.
inline std::map<std::string, std::string> filesBelow(const fs::path &folder)
{
    std::map<std::string, std::string> files;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && !entry.is_symlink()) {
            files[entry.path().lexically_relative(folder).string()] = fileBytes(entry.path());
        }
    }
    return files;
}

inline bool holdsPartialFile(const fs::path &folder)
{
    const auto files = filesBelow(folder);
    return std::any_of(
        files.begin(), files.end(), [](const auto &f) { return f.first.find(".partial") != std::string::npos; });
}
