#include "storage/Digest.h"

#include "storage/Blocks.h"

#include "platform/Files.h"

namespace Storage {

Sha256::Digest digest(const std::filesystem::path &file)
{
    const Files::Descriptor source = Files::openForReading(file);
    Sha256 sha256;
    forEachBlock(source.get(), [&](std::span<const char> block) { sha256.update(block); });
    return sha256.finish();
}

} // namespace Storage
