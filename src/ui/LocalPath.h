// File addresses of dialogs and drops as paths.
#pragma once

#include <QList>
#include <QUrl>

#include <filesystem>
#include <optional>
#include <vector>

/// The path that a "file:" address names, byte for byte, also where its bytes are not UTF-8. Absent for any other
/// address, and for one of another computer.
[[nodiscard]] std::optional<std::filesystem::path> localPath(const QUrl &url);

/// Those of the addresses that name a path.
[[nodiscard]] std::vector<std::filesystem::path> localPaths(const QList<QUrl> &urls);

/// The "file:" address of a path, byte for byte.
[[nodiscard]] QUrl fileUrl(const std::filesystem::path &path);
