#include "storage/Digest.h"

#include "storage/Blocks.h"

#include "platform/files/Files.h"

namespace Storage {

Sha256::Digest digest(const std::filesystem::path &file, int from)
{
    const Files::Descriptor source
        = Files::openForReading(file, from == AT_FDCWD ? Files::Links::Follow : Files::Links::Refuse, from);
    Sha256 sha256;
    try {
        forEachBlock(source.get(), [&](std::span<const char> block) { sha256.update(block); });
    } catch (const std::system_error &failure) { // among thousands of files the user has to find it
        throw std::filesystem::filesystem_error("read", file, failure.code());
    }
    return sha256.finish();
}

} // namespace Storage
