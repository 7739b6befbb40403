#include "platform/files/DiskCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

int openFileAt(int folder, const char *path, int flags, mode_t mode)
{
    return ::openat(folder, path, flags, mode);
}

int renameExclusively(int fromFolder, const char *from, int toFolder, const char *to)
{
    if (::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    // FUSE's exFAT and the older FAT drivers know no flags (EINVAL, some ENOSYS), and have nothing better than a look
    // at the name first. A known limit: what another program puts there between the two calls is replaced.
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
    struct stat existing {};
    if (::fstatat(toFolder, to, &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return -1;
    }
    return errno == ENOENT ? ::renameat(fromFolder, from, toFolder, to) : -1;
}

} // namespace

DiskCalls DiskCalls::system()
{
    return {::write, ::fsync, ::close, ::mkdir, ::unlink, openFileAt, ::renameat, renameExclusively, ::mkdirat,
        ::unlinkat, ::futimens, ::syncfs};
}

DiskCalls &diskCalls()
{
    static DiskCalls calls = DiskCalls::system();
    return calls;
}
