#include "storage/Writers.h"

#include "storage/Blocks.h"

#include <fcntl.h>

namespace {

void copyBytes(
    const std::filesystem::path &source, const std::filesystem::path &destination, Files::Durability durability)
{
    const Files::Descriptor from = Files::openForReading(source);
    const Files::Descriptor to = Files::createExclusively(destination);
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

void writeBytes(const QByteArray &bytes, const std::filesystem::path &destination, Files::Durability durability)
{
    Files::writeAtomically(destination, bytes, durability);
}

void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination)
{
    copyBytes(source, destination, Files::Durability::Now);
}

void copyOver(
    const std::filesystem::path &source, const std::filesystem::path &destination, Files::Durability durability)
{
    Files::place(destination, Files::Placing::Replace,
        [&](const std::filesystem::path &file) { copyBytes(source, file, durability); });
}

} // namespace Storage
