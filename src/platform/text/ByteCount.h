// Sizes of files as people read them, in the shown language (see TextOrder.h). Any thread.
#pragma once

#include <QString>

#include <cstdint>

/// A size in decimal units: "512 B", "980 kB", "12,3 MB", "1,23 GB".
[[nodiscard]] QString byteCount(std::int64_t bytes);
