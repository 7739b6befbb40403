// Copies the settings and themes of a device to the computer: what a failed theme install or a reset would cost.
//
// A backup folder gets its final name in one step when it is complete and on the medium; a crash leaves at most a
// hidden ".partial" folder beside it. The device is only read. Blocking; no state; any thread but the UI's.
#pragma once

#include "storage/DeviceAnchor.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace Storage {

/// Makes the folder `destination`, outside the device, of the items that hold settings and themes in the
/// `.rockbox` of the device, those of them that are there, and a README.txt. The parent of `destination` must exist.
/// False where `stop` was requested before all was copied. Throws MarluneError or std::system_error. In both cases
/// nothing exists at `destination` that was not there before.
[[nodiscard]] bool backup(
    const DeviceAnchor &device, const std::filesystem::path &destination, const std::stop_token &stop = {});

/// Bytes of all files in a backup's folder; links are neither followed nor counted. Absent where any of it cannot be
/// read, there is more than any backup holds, or `stop` is requested meanwhile. Never throws.
[[nodiscard]] std::optional<std::int64_t> backupSize(const std::filesystem::path &backup, const std::stop_token &stop);

} // namespace Storage
