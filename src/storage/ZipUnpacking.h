// Unpacks a foreign ZIP archive where it can do no harm, by the system's own tool.
//
// The archive is read twice before: byte by byte (ZipInspection.h), and by the tool that will unpack it; both have to
// find it harmless, and the same names in it. Both read a copy of its own, and what comes out is held against what was
// inspected. Blocking; no state; any thread but the UI's.
#pragma once

#include <filesystem>
#include <set>

namespace Storage {

struct UnpackedZip {
    std::filesystem::path folder;
    std::set<std::filesystem::path> files; ///< below it, counted from it, normalized: those that were inspected
};

/// Unpacks `zip` below the private, empty folder `scratch`, which is the caller's to remove, and returns what came out
/// of it: the regular files whose names were inspected, in folders, 100 MiB at most whatever the archive said of
/// itself, all of them readable, no link among them. Throws MarluneError where the archive is refused,
/// with the tool's own words where the tool refuses it, or the system's failure.
[[nodiscard]] UnpackedZip unpackZip(const std::filesystem::path &zip, const std::filesystem::path &scratch);

} // namespace Storage
