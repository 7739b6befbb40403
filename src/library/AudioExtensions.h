// Which files the library takes for music. No state; any thread.
#pragma once

#include <filesystem>

/// Whether the extension, in any case, is one of the 13 that the library takes. The file itself is not looked at.
[[nodiscard]] bool hasAudioExtension(const std::filesystem::path &file);
