// Values as people read them, in the shown language. UI thread.
#pragma once

#include <QDateTime>
#include <QString>

#include <chrono>

namespace Wording {

/// "jeszcze około 2 min"; seconds in steps of ten, so that the text keeps still.
[[nodiscard]] QString remainingText(std::chrono::seconds remaining);

/// "poniedziałek, 23 listopada 2026, 14:05"
[[nodiscard]] QString moment(const QDateTime &moment);

/// A file's name in one line that reads as it is written: whatever would break it, turn the direction of what follows
/// or is no character at all is replaced. For the eye and the ear only: no file has this name.
[[nodiscard]] QString fileName(const QString &name);

/// fileName() of a name that may be of any length: of a longer one than this nobody reads the rest, and to lay it out
/// takes long. For tags too.
[[nodiscard]] QString shownName(const QString &name);

/// An album's artist: a name, which stays as it is, or the words for several.
[[nodiscard]] QString artistText(const QString &artist);

} // namespace Wording
