// The system calls with which the program changes a disk, in one replaceable table.
//
// Every writer goes through diskCalls(), so a test can make the n-th call fail and look at what is left behind.
// The table is process-wide and is replaced only by tests, before other threads run. Each entry behaves as the
// call it is named after: -1 (or a short count) and errno on failure.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <filesystem>

struct DiskCalls {
    ssize_t (*write)(int descriptor, const void *bytes, std::size_t count);
    int (*fsync)(int descriptor);
    int (*close)(int descriptor);
    int (*mkdir)(const char *path, mode_t mode);
    int (*unlink)(const char *path);

    // Each path is counted from an open folder, or from AT_FDCWD.
    int (*openat)(int folder, const char *path, int flags, mode_t mode);
    int (*renameat)(int fromFolder, const char *from, int toFolder, const char *to);
    /// renameat() that fails with EEXIST where `to` exists, be it a dangling link. On a driver that cannot do this in
    /// one step, what comes to `to` in the last moment is replaced.
    int (*renameExclusive)(int fromFolder, const char *from, int toFolder, const char *to);
    int (*mkdirat)(int folder, const char *path, mode_t mode);
    int (*unlinkat)(int folder, const char *path, int flags);
    int (*futimens)(int descriptor, const timespec times[2]);
    int (*syncfs)(int descriptor);

    /// The calls of the operating system.
    [[nodiscard]] static DiskCalls system();
};

[[nodiscard]] DiskCalls &diskCalls();
