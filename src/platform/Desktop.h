// Hands files and folders to the desktop. UI thread; returns at once.
#pragma once

#include <filesystem>

namespace Desktop {

/// Opens with the desktop's own program for it; a folder with the file manager. False if nothing takes it.
bool open(const std::filesystem::path &path);
/// Shows the item selected in its folder in the file manager; where no file manager answers, opens the folder.
void reveal(const std::filesystem::path &path);

} // namespace Desktop
