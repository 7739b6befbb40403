#include "storage/Writers.h"

#include "storage/Blocks.h"

namespace Storage {

void copyToNew(
    const Files::Descriptor &source, const std::filesystem::path &destination, Files::Durability durability, int folder)
{
    const Files::Descriptor to = Files::createExclusively(destination, folder);
    copyBlocks(source.get(), to.get());
    if (durability == Files::Durability::Now) {
        Files::synchronise(to.get());
    }
}

void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination, int folder)
{
    copyToNew(Files::openForReading(source), destination, Files::Durability::Now, folder);
}

} // namespace Storage
