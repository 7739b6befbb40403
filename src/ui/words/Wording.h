// Values as people read them, in the shown language. UI thread.
#pragma once

#include <QString>

#include <chrono>

namespace Wording {

/// "jeszcze około 2 min"; seconds in steps of ten, so that the text keeps still.
[[nodiscard]] QString remainingText(std::chrono::seconds remaining);

/// An album's artist: a name, which stays as it is, or the words for several.
[[nodiscard]] QString artistText(const QString &artist);

} // namespace Wording
