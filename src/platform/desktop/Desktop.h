// Hands files, folders and addresses to the desktop. UI thread; returns at once.
#pragma once

#include <QUrl>

#include <filesystem>
#include <vector>

namespace Desktop {

/// Opens with the desktop's own program for it; a folder with the file manager. False if nothing takes it.
bool open(const std::filesystem::path &path);
/// Opens an address with the desktop's own program for it. Whether it may leave this one is the caller's decision.
bool openAddress(const QUrl &address);
/// Shows the items selected in their folders in the file manager; where no file manager answers, opens the folders.
/// Items beyond the first five folders are left out, since each folder takes a window.
void reveal(const std::vector<std::filesystem::path> &paths);

} // namespace Desktop
