// Values as people read them, in the shown language. UI thread.
#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace Wording {

/// How long work at `progress` (0 to 1) that began `elapsed` ago may still take, at the pace so far. Absent as long as
/// that pace says too little.
[[nodiscard]] std::optional<std::chrono::seconds> remaining(std::chrono::milliseconds elapsed, double progress);
/// "jeszcze około 2 min"; seconds in steps of ten, so that the text stands still.
[[nodiscard]] QString remainingText(std::chrono::seconds remaining);

} // namespace Wording
