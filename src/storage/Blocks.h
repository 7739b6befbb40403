// A file read to its end, or copied, in blocks of 1 MiB, one of them in memory. Blocking; any thread but the UI's.
#pragma once

#include <functional>
#include <span>

namespace Storage {

/// Calls `use` with each block in turn, the last one shorter, none for an empty file. Throws the system's failure.
void forEachBlock(int descriptor, const std::function<void(std::span<const char>)> &use);

/// Writes what is still to be read of `from` to `to`. Throws the system's failure.
void copyBlocks(int from, int to);

} // namespace Storage
