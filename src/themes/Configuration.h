// The firmware's settings as its files keep them: a theme's `.cfg`, `config.cfg`, `rockbox-info.txt`.
//
// Blocking; no state; any thread but the UI's. Nothing fails here: what cannot be read gives no settings.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <filesystem>

/// Values by their keys, as they are in the file.
using Configuration = QMap<QString, QString>;

/// Empty where the file cannot be read, is no regular one, or is far larger than the firmware's own.
[[nodiscard]] Configuration configuration(const std::filesystem::path &file);
/// Lines of `key: value`; "#" begins a comment line, a later line replaces an earlier one with the same key.
[[nodiscard]] Configuration configurationFrom(const QByteArray &bytes);
