// A device: a mounted iPod disk, or a test folder; anything that holds a real `.rockbox` directory.
#pragma once

#include <QString>

#include <cstdint>
#include <filesystem>

/// What one inspection saw; nothing keeps it up to date. Its identity is `root`.
struct Device {
    std::filesystem::path root; ///< the folder that holds `.rockbox`
    QString name;
    QString version; ///< the firmware's, or "wersja nieznana"
    std::int64_t available = 0; ///< bytes
    std::int64_t total = 0; ///< bytes
    bool isVolume = false; ///< a disk mounted where the desktop mounts disks; false for a test folder

    bool operator==(const Device &) const = default;

    /// Looks at `folder` anew. Cheap, and run before each step of a long job: a disk pulled out shows up here.
    /// Blocking. Throws MarluneError where the folder is no device, std::system_error where the volume cannot be asked.
    [[nodiscard]] static Device inspect(const std::filesystem::path &folder);

    /// The version named by the bytes of a `rockbox-info.txt`: the first line that begins with "Version:".
    [[nodiscard]] static QString versionFrom(const QByteArray &info);
};
