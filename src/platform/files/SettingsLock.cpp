#include "platform/files/SettingsLock.h"

#include "platform/MarluneError.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

SettingsLock::SettingsLock(const std::filesystem::path &settingsFile)
{
    std::error_code ignored; // a folder that cannot be written is reported with the first change
    std::filesystem::create_directories(settingsFile.parent_path(), ignored);
    const std::filesystem::path file = settingsFile.parent_path() / (settingsFile.filename().native() + ".lock");
    m_file = Files::Descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (m_file.get() >= 0 && ::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        throw MarluneError(QStringLiteral("Marlune jest już uruchomione."));
    }
}
