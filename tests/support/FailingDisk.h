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
            .open = orFail<&DiskCalls::open>,
            .write = orFail<&DiskCalls::write>,
            .fsync = orFail<&DiskCalls::fsync>,
            .close =
                [](int descriptor) { // a failing close() gives the descriptor back all the same
                    const int result = system().close(descriptor);
                    return fails() ? -1 : result;
                },
            .rename = orFail<&DiskCalls::rename>,
            .renameExclusive = orFail<&DiskCalls::renameExclusive>,
            .mkdir = orFail<&DiskCalls::mkdir>,
            .unlink = orFail<&DiskCalls::unlink>,
            .openat = orFail<&DiskCalls::openat>,
            .mkdirat = orFail<&DiskCalls::mkdirat>,
            .unlinkat = orFail<&DiskCalls::unlinkat>,
            .futimens = orFail<&DiskCalls::futimens>,
            .syncfs = orFail<&DiskCalls::syncfs>,
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
    /// Stands in for the table's entry `Call`.
    template <auto Call, typename Result, typename... Arguments> static Result orFail(Arguments... arguments)
    {
        return fails() ? Result(-1) : (system().*Call)(arguments...);
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
