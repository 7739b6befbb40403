// Detached background jobs, awaited by coroutines of the UI thread.
//
//     auto work = [copies...] { return blockingCall(); };
//     auto result = co_await background(work);
//
// The work runs on a pool thread; the coroutine goes on where it was, on its own thread. An exception of the work
// is thrown by the co_await. The work is taken by non-const reference and moved out, so that only a named callable
// binds to it: GCC 12 destroys a temporary twice that is in an expression with co_await. After each co_await
// the owner is tested (QPointer) before any member is touched, since it can be gone by then.
#pragma once

#include <QCoro/QCoroFuture>
#include <QCoro/QCoroTask>
#include <QPromise>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <concepts>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <type_traits>
#include <variant>

enum class JobPriority : std::uint8_t {
    Discovery, ///< of devices; neither waits for jobs that hang with a disk nor holds them up
    Utility, ///< device content, and what is looked at by the way; may hang with the disk
    UserInitiated, ///< import and transfer
};

/// Runs `action` on the UI thread later; from any thread. What it needs of an owner it holds as a QPointer, which it
/// tests there.
void postToUi(std::function<void()> action);

namespace BackgroundJobs {

[[nodiscard]] QThreadPool &pool(JobPriority priority);
/// Waits until no job runs; false if some still did after `limit`.
[[nodiscard]] bool drain(std::chrono::milliseconds limit);

/// Orders what a thread hands to a pool or to the UI thread before what that one makes of it. Qt does so too; this is
/// for race detectors, which do not see into its libraries.
inline void orderHandover()
{
    static std::atomic<unsigned> handovers = 0;
    handovers.fetch_add(1, std::memory_order_acq_rel);
}

/// Runs `work` on a thread of `pool`.
template <std::invocable Work> void startOn(QThreadPool &pool, Work work)
{
    std::function<void()> task = [work = std::move(work)]() mutable {
        orderHandover();
        work();
    };
    orderHandover();
    pool.start(std::move(task));
}

/// Destroys the value on another thread, if nobody else holds it: with many tracks that takes long.
template <typename Value> void discard(std::shared_ptr<Value> value)
{
    startOn(pool(JobPriority::Utility), [value = std::move(value)]() mutable { value.reset(); });
}

/// Runs `work` on a thread of its own, which nobody waits for. Throws std::system_error where there is none to be had.
template <std::invocable Work> void startDetached(Work work)
{
    orderHandover();
    std::thread([work = std::move(work)]() mutable {
        orderHandover();
        work();
    }).detach();
}

/// A job and its outcome, shared by the two threads.
template <typename Work, typename Result> struct Job {
    using Stored = std::conditional_t<std::is_void_v<Result>, std::monostate, Result>;

    explicit Job(Work &&taken)
        : work(std::move(taken))
    {
    }

    void run() noexcept
    {
        try {
            if constexpr (std::is_void_v<Result>) {
                (*work)();
                value.emplace();
            } else {
                value.emplace((*work)());
            }
        } catch (...) {
            failure = std::current_exception();
        }
        work.reset(); // what the work holds dies on the thread that used it
        done.store(true, std::memory_order_release);
    }

    std::optional<Work> work;
    std::optional<Stored> value;
    std::exception_ptr failure;
    std::atomic<bool> done = false; ///< orders the outcome before the coroutine that reads it
};

} // namespace BackgroundJobs

template <std::invocable Work>
QCoro::Task<std::invoke_result_t<Work &>> background(Work &work, JobPriority priority = JobPriority::UserInitiated)
{
    using Result = std::invoke_result_t<Work &>;
    auto job = std::make_shared<BackgroundJobs::Job<Work, Result>>(std::move(work));
    auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    QFuture<void> finished = promise->future();
    auto task = [job, promise] {
        job->run();
        // From the event loop: the shortest job too lands only when the call that began it has returned.
        postToUi([promise] { promise->finish(); });
    };
    BackgroundJobs::startOn(BackgroundJobs::pool(priority), std::move(task));
    co_await finished;
    (void)job->done.load(std::memory_order_acquire);
    if (job->failure) {
        std::rethrow_exception(job->failure);
    }
    if constexpr (!std::is_void_v<Result>) {
        co_return std::move(*job->value);
    }
}

/// What became of a job: its result, or why it failed.
template <typename Result> struct Outcome {
    std::optional<std::conditional_t<std::is_void_v<Result>, std::monostate, Result>> value;
    std::exception_ptr failure;
};

/// background() for a job whose failure is reported to the user and ends nothing: it throws nothing that the work
/// throws.
template <std::invocable Work>
QCoro::Task<Outcome<std::invoke_result_t<Work &>>> attempt(
    Work &work, JobPriority priority = JobPriority::UserInitiated)
{
    Outcome<std::invoke_result_t<Work &>> outcome;
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Work &>>) {
            co_await background(work, priority);
            outcome.value.emplace();
        } else {
            outcome.value = co_await background(work, priority);
        }
    } catch (const std::exception &) {
        outcome.failure = std::current_exception();
    }
    co_return outcome;
}
