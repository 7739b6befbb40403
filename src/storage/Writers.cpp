#include "storage/Writers.h"

#include "storage/Blocks.h"

namespace Storage {

void copyToNew(const Files::Descriptor &source, const std::filesystem::path &destination, Files::Durability durability)
{
    const Files::Descriptor to = Files::createExclusively(destination);
    copyBlocks(source.get(), to.get());
    if (durability == Files::Durability::Now) {
        Files::synchronise(to.get());
    }
}

void writeBytes(const QByteArray &bytes, const std::filesystem::path &destination, Files::Durability durability)
{
    Files::writeAtomically(destination, bytes, durability);
}

void copyAudioBytes(const std::filesystem::path &source, const std::filesystem::path &destination)
{
    copyToNew(Files::openForReading(source), destination);
}

void copyOver(
    const std::filesystem::path &source, const std::filesystem::path &destination, Files::Durability durability)
{
    Files::place(destination, Files::Placing::Replace,
        [&](const std::filesystem::path &file) { copyToNew(Files::openForReading(source), file, durability); });
}

} // namespace Storage
