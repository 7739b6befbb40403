#include "storage/ScratchFolder.h"

#include "storage/FolderTree.h"

#include "platform/DiskCalls.h"

#include <QUuid>

#include <cerrno>

namespace Storage {

ScratchFolder::ScratchFolder()
{
    const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper();
    m_path = std::filesystem::canonical(std::filesystem::temp_directory_path()) / ("Marlune-" + id).toStdString();
    if (diskCalls().mkdir(m_path.c_str(), 0700) != 0) {
        const std::error_code failure(errno, std::generic_category());
        remove(); // a call can fail after the disk has done its work
        throw std::filesystem::filesystem_error("mkdir", m_path, failure);
    }
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
