// Paths as text and parts of their names. No state; any thread.
//
// A local file's location is a std::filesystem::path, because a Linux name is bytes.
#pragma once

#include <QString>

#include <filesystem>
#include <string_view>

namespace Files {

/// A path as text, for display and storage. Lossless: a byte that is not valid UTF-8 becomes the lone surrogate
/// U+DC00 + byte, from which fromText() makes the same byte again.
[[nodiscard]] QString text(const std::filesystem::path &path);
/// The same of a path's bytes, or of a part of them.
[[nodiscard]] QString textOfBytes(std::string_view bytes);
[[nodiscard]] std::filesystem::path fromText(const QString &text);

/// The last component as text; of "/a/b/" it is "b", of the root "/".
[[nodiscard]] QString name(const std::filesystem::path &path);
/// The name without its last extension, as text. A leading dot begins no extension.
[[nodiscard]] QString baseName(const std::filesystem::path &path);
/// The extension without its dot, as text; empty if there is none.
[[nodiscard]] QString extension(const std::filesystem::path &path);

/// Without one at its end: the name of a link would otherwise mean its target.
[[nodiscard]] std::filesystem::path withoutSeparator(const std::filesystem::path &path);
/// Absolute, without "." and ".." pieces, doubled or trailing separators; links are not resolved.
[[nodiscard]] std::filesystem::path standardized(const std::filesystem::path &path);

} // namespace Files
