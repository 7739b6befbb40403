#include "platform/tasks/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

void Parallel::forEach(std::size_t count, int workers, const std::function<void(std::size_t number, int worker)> &work)
{
    std::atomic<std::size_t> next = 0;
    std::mutex guard;
    std::exception_ptr failure;
    const auto run = [&](int worker) {
        try {
            for (std::size_t number = next++; number < count; number = next++) {
                work(number, worker);
            }
        } catch (...) {
            const std::lock_guard lock(guard);
            failure = failure ? failure : std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> threads; // joined here
        const int others = int(std::min(std::size_t(std::max(workers, 1)), count)) - 1;
        try {
            for (int worker = 1; worker <= others; ++worker) {
                threads.emplace_back(run, worker);
            }
        } catch (const std::system_error &) {
            // the others do it
        }
        run(0);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}
