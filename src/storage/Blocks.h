// A file read from its start to its end in blocks of 1 MiB, one of them in memory.
#pragma once

#include <functional>
#include <span>

namespace Storage {

/// Calls `use` with each block in turn, the last one shorter, none for an empty file. Throws the system's failure.
void forEachBlock(int descriptor, const std::function<void(std::span<const char>)> &use);

} // namespace Storage
