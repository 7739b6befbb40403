#include "storage/Blocks.h"

#include "platform/Files.h"

#include <fcntl.h>

#include <memory>

namespace Storage {

void forEachBlock(int descriptor, const std::function<void(std::span<const char>)> &use)
{
    constexpr std::size_t blockBytes = 0x100000;
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

} // namespace Storage
