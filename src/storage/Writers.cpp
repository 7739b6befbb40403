#include "storage/Writers.h"

#include "storage/Blocks.h"

#include "platform/files/FileWriting.h"

namespace Storage {

void copyToNew(
    const Files::Descriptor &source, const std::filesystem::path &destination, int from, Files::Durability durability)
{
    const Files::Descriptor to = Files::createExclusively(destination, from);
    copyBlocks(source.get(), to.get());
    if (durability == Files::Durability::Now) {
        Files::sync(to.get());
    }
}

void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination, int from)
{
    copyToNew(Files::openForReading(source), destination, from);
}

} // namespace Storage
