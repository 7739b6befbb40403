#include "storage/Writers.h"

#include "storage/Blocks.h"

#include "platform/files/DiskCalls.h"
#include "platform/files/FileWriting.h"

#include <cerrno>

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

bool removeIf(const Files::Folder &folder, const std::filesystem::path &name, const std::function<bool()> &mayGo)
{
    if (!mayGo()) {
        return false;
    }
    if (diskCalls().unlinkat(folder.descriptor.get(), name.c_str(), 0) != 0) {
        Files::throwFailure(errno, folder.path / name);
    }
    return true;
}

} // namespace Storage
