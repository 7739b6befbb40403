// Makes the n-th disk call of a test fail, and counts them. One at a time; the calls come back at destruction.
#pragma once

#include "platform/DiskCalls.h"

#include <atomic>
#include <cerrno>

class FailingDisk {
public:
    /// `failAt` counts from 1; 0 fails none. The call fails with `error`, and does nothing.
    explicit FailingDisk(int failAt, int error = EIO)
    {
        s_count = 0;
        s_failAt = failAt;
        s_error = error;
        diskCalls() = {
            [](const char *path, int flags, mode_t mode) { return fails() ? -1 : system().open(path, flags, mode); },
            [](int descriptor, const void *bytes, std::size_t count) -> ssize_t {
                return fails() ? -1 : system().write(descriptor, bytes, count);
            },
            [](int descriptor) { return fails() ? -1 : system().fsync(descriptor); },
            [](int descriptor) {
                const int result
                    = system().close(descriptor); // a failing close() gives the descriptor back all the same
                return fails() ? -1 : result;
            },
            [](const char *from, const char *to) { return fails() ? -1 : system().rename(from, to); },
            [](const char *from, const char *to) { return fails() ? -1 : system().renameExclusive(from, to); },
            [](const char *path, mode_t mode) { return fails() ? -1 : system().mkdir(path, mode); },
            [](const char *path) { return fails() ? -1 : system().unlink(path); },
        };
    }
    ~FailingDisk() { diskCalls() = DiskCalls::system(); }
    FailingDisk(const FailingDisk &) = delete;
    FailingDisk &operator=(const FailingDisk &) = delete;

    /// Whether the call that was to fail has been made.
    [[nodiscard]] static bool reached() { return s_count >= s_failAt; }

private:
    static bool fails()
    {
        if (++s_count != s_failAt) {
            return false;
        }
        errno = s_error;
        return true;
    }
    static const DiskCalls &system()
    {
        static const DiskCalls calls = DiskCalls::system();
        return calls;
    }

    static inline std::atomic<int> s_count = 0;
    static inline int s_failAt = 0;
    static inline int s_error = 0;
};
