// Runs a program of the system and waits for what it says.
//
// The program gets its arguments as they are, through no shell; a UTF-8 locale and nothing else of this program's
// environment but the search path, so that no setting of the user's changes what it does; no input and no terminal, so
// that it can ask nothing. Blocking, without an event loop; any thread but the UI's.
#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>

namespace Storage {

/// Where a program runs, and what it may take. One that takes more is ended.
struct ToolBounds {
    std::filesystem::path folder = "."; ///< it runs in this folder
    std::int64_t maxFileBytes = -1; ///< no file that it writes grows beyond these bytes; -1: no limit
    std::int64_t maxOutput = 32 << 20; ///< bytes
    bool merged
        = true; ///< both outputs are the result and a failure's words; otherwise each is one of them, in this order
    /// The message where it fails without a word, or with words that are no UTF-8.
    QString wordless = QStringLiteral("Błąd narzędzia systemowego.");
    std::chrono::milliseconds timeout = std::chrono::minutes(10);
    /// Called again and again while the program runs, and once after that. By throwing it ends the program.
    std::function<void()> watch = [] { };
};

/// What the program `tool` writes to its standard output and standard error, in the order in which it does; empty where
/// that is no UTF-8. Throws MarluneError where it cannot be started, goes beyond its bounds, or ends with another
/// status than 0: then with what it wrote, the last thousand characters of it, as the message.
[[nodiscard]] QString run(const QString &tool, const QStringList &arguments, const ToolBounds &bounds = {});

} // namespace Storage
