// Makes the n-th disk call of a test fail, and counts them. One at a time; the calls come back at destruction.
#pragma once

#include "platform/files/DiskCalls.h"

#include <atomic>
#include <cerrno>
#include <functional>
#include <type_traits>

class FailingDisk {
public:
    /// Refused: the call does nothing and fails. Late: it does its work and fails all the same (openat() does nothing).
    /// Dead: it and all after it do nothing and fail, and something may happen before it. Event, EventAfter: something
    /// happens before or after it, and it works.
    enum class Fault { Refused, Late, Dead, Event, EventAfter };

    /// `failAt` counts from 1; 0 fails none. The call fails with `error`.
    explicit FailingDisk(int failAt, int error = EIO, Fault fault = Fault::Refused, std::function<void()> event = {})
    {
        s_count = 0;
        s_failAt = failAt;
        s_error = error;
        s_fault = fault;
        s_event = std::move(event);
        diskCalls() = {Call<&DiskCalls::write>::make, Call<&DiskCalls::fsync>::make, Call<&DiskCalls::close>::make,
            Call<&DiskCalls::mkdir>::make, Call<&DiskCalls::unlink>::make, Call<&DiskCalls::openat>::make,
            Call<&DiskCalls::renameat>::make, Call<&DiskCalls::renameExclusive>::make, Call<&DiskCalls::mkdirat>::make,
            Call<&DiskCalls::unlinkat>::make, Call<&DiskCalls::futimens>::make, Call<&DiskCalls::syncfs>::make};
    }
    ~FailingDisk() { diskCalls() = DiskCalls::system(); }
    FailingDisk(const FailingDisk &) = delete;
    FailingDisk &operator=(const FailingDisk &) = delete;

    /// The call after `calls` more of them fails too.
    static void failAfter(int calls) { s_failAt = s_count + calls + 1; }
    static void heal() { s_failAt = 0; }

    /// Whether the call that was to fail has been made.
    [[nodiscard]] static bool reached() { return s_count >= s_failAt; }

private:
    template <auto Member> struct Call;
    template <typename Result, typename... Arguments, Result (*DiskCalls::*Member)(Arguments...)> struct Call<Member> {
        static Result make(Arguments... arguments)
        {
            // A failing close() gives the descriptor back all the same; fsync() looks like it and changes nothing.
            const bool closes = std::is_same_v<decltype(Member), decltype(&DiskCalls::close)>;
            const bool opens = std::is_same_v<decltype(Member), decltype(&DiskCalls::openat)>;
            const bool failed = fails();
            const Result result
                = !failed || closes || (s_fault == Fault::Late && !opens) ? (system().*Member)(arguments...) : -1;
            errno = failed ? s_error : errno;
            if (s_fault == Fault::EventAfter && s_count == s_failAt) {
                const int error = errno;
                s_event();
                errno = error;
            }
            return failed ? -1 : result;
        }
    };

    static bool fails()
    {
        const int number = ++s_count;
        if (number == s_failAt && s_fault != Fault::EventAfter && s_event) {
            s_event();
        }
        if (s_fault == Fault::Event || s_fault == Fault::EventAfter) {
            return false;
        }
        return s_failAt > 0 && (number == s_failAt || (number > s_failAt && s_fault == Fault::Dead));
    }
    static const DiskCalls &system()
    {
        static const DiskCalls calls = DiskCalls::system();
        return calls;
    }

    static inline std::atomic<int> s_count = 0;
    static inline std::atomic<int> s_failAt = 0;
    static inline int s_error = 0;
    static inline Fault s_fault = Fault::Refused;
    static inline std::function<void()> s_event;
};
