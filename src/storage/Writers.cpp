#include "storage/Writers.h"

#include "storage/Blocks.h"

#include "platform/DiskCalls.h"

#include <fcntl.h>

#include <cerrno>

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
    Files::writeAtomically(destination, {bytes.constData(), std::size_t(bytes.size())}, durability);
}

void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination)
{
    copyBytes(source, destination, Files::Durability::Now);
}

void copyOver(
    const std::filesystem::path &source, const std::filesystem::path &destination, Files::Durability durability)
{
    const std::filesystem::path temporary = destination.parent_path() / Files::temporaryName();
    try {
        copyBytes(source, temporary, durability);
        if (diskCalls().rename(temporary.c_str(), destination.c_str()) != 0) {
            const std::error_code failure(errno, std::generic_category());
            throw std::filesystem::filesystem_error("rename", destination, failure);
        }
    } catch (...) {
        diskCalls().unlink(temporary.c_str());
        throw;
    }
}

} // namespace Storage
