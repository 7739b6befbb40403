// One piece of work shared out among several threads. Blocking: it has ended when the call returns.
#pragma once

#include <cstddef>
#include <functional>

namespace Parallel {

/// Calls work(number, worker) once for each number below `count`, on up to `workers` threads of which the caller's is
/// one. Lower numbers begin first; a worker, 0 to workers - 1, does one thing at a time. With fewer threads where the
/// system gives no more. The first exception ends what has not begun, and is thrown.
void forEach(std::size_t count, int workers, const std::function<void(std::size_t number, int worker)> &work);

} // namespace Parallel
