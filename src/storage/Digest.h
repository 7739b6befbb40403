// The SHA-256 of a file's content. Blocking; any thread but the UI's.
#pragma once

#include "platform/files/Sha256.h"

#include <fcntl.h>

#include <filesystem>

namespace Storage {

/// Reads the file in blocks of 1 MiB. One that is counted from the open folder `from` must not be a link. Throws the
/// system's failure, which names the file.
[[nodiscard]] Sha256::Digest digest(const std::filesystem::path &file, int from = AT_FDCWD);

} // namespace Storage
