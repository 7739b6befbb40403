#include "storage/Blocks.h"

#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <fcntl.h>

#include <memory>

namespace {

constexpr std::size_t blockBytes = 0x100000;

} // namespace

namespace Storage {

void forEachBlock(int descriptor, const std::function<void(std::span<const char>)> &use)
{
    const auto buffer = std::make_unique_for_overwrite<char[]>(blockBytes);
    (void)::posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    while (true) {
        const std::size_t count = Files::readFully(descriptor, {buffer.get(), blockBytes});
        if (count > 0) {
            use({buffer.get(), count});
        }
        if (count < blockBytes) {
            return;
        }
    }
}

void copyBlocks(int from, int to)
{
    off_t written = 0;
    forEachBlock(from, [&](std::span<const char> block) {
        Files::writeFully(to, block);
        if (block.size() == blockBytes) {
            // Starts the transport to the medium now, so that little is left to wait for at the end. Only a hint: not
            // every file system knows it.
            (void)::sync_file_range(to, written, off_t(block.size()), SYNC_FILE_RANGE_WRITE);
        }
        written += off_t(block.size());
    });
}

} // namespace Storage
