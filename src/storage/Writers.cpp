#include "storage/Writers.h"

#include "storage/Blocks.h"

#include <fcntl.h>

namespace {

void copyBytes(const std::filesystem::path &source, const std::filesystem::path &destination, int folder,
    Files::Durability durability)
{
    const Files::Descriptor from = Files::openForReading(source);
    const Files::Descriptor to = Files::createExclusively(destination, folder);
    off_t written = 0;
    Storage::forEachBlock(from.get(), [&](std::span<const char> block) {
        Files::writeFully(to.get(), block);
        // Starts the transport to the medium now, so that little is left to wait for at the end. Only a hint: not
        // every file system knows it.
        (void)::sync_file_range(to.get(), written, off_t(block.size()), SYNC_FILE_RANGE_WRITE);
        written += off_t(block.size());
    });
    if (durability == Files::Durability::Now) {
        Files::synchronise(to.get());
    }
}

} // namespace

namespace Storage {

void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination, int from)
{
    copyBytes(source, destination, from, Files::Durability::Now);
}

void copyOver(const std::filesystem::path &source, const Files::Folder &folder, const std::filesystem::path &name,
    Files::Durability durability)
{
    Files::place(folder, name, Files::Placing::Replace,
        [&](const std::filesystem::path &file, int from) { copyBytes(source, file, from, durability); });
}

} // namespace Storage
