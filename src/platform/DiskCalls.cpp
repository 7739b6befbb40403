#include "platform/DiskCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

int openFile(const char *path, int flags, mode_t mode)
{
    return ::open(path, flags, mode);
}

int openFileAt(int folder, const char *path, int flags, mode_t mode)
{
    return ::openat(folder, path, flags, mode);
}

int renameExclusively(const char *from, const char *to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    // FUSE's exFAT and the older FAT drivers know no flags (EINVAL, some ENOSYS). There the name is looked at
    // first; the device is this program's alone while it writes, so the gap between the two calls is harmless.
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
    struct stat existing {};
    if (::lstat(to, &existing) == 0) {
        errno = EEXIST;
        return -1;
    }
    return errno == ENOENT ? ::rename(from, to) : -1;
}

} // namespace

DiskCalls DiskCalls::system()
{
    return {openFile, ::write, ::fsync, ::close, ::rename, renameExclusively, ::mkdir, ::unlink, openFileAt, ::mkdirat,
        ::unlinkat, ::futimens, ::syncfs};
}

DiskCalls &diskCalls()
{
    static DiskCalls calls = DiskCalls::system();
    return calls;
}
