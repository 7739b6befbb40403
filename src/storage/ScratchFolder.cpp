#include "storage/ScratchFolder.h"

#include "storage/ComputerDisk.h"
#include "storage/FolderTree.h"

#include "platform/files/DiskCalls.h"

#include "platform/files/FileWriting.h"

#include <cerrno>

namespace Storage {

ScratchFolder::ScratchFolder()
{
    m_path = std::filesystem::canonical(std::filesystem::temp_directory_path()) / ("Marlune-" + Files::newIdentifier());
    onComputersDisk(m_path, [this] {
        if (diskCalls().mkdir(m_path.c_str(), 0700) != 0) {
            const int error = errno;
            remove(); // a call can fail after the disk has done its work
            Files::throwFailure(error, m_path);
        }
    });
}

ScratchFolder::~ScratchFolder()
{
    remove();
}

void ScratchFolder::remove() const
{
    removeTree(m_path);
}

} // namespace Storage
