// Whether a ZIP archive is one that a theme package may be: read byte by byte, and trusted in nothing.
//
// Only the archive's own structures are looked at (APPNOTE.TXT, sections 4.3.7, 4.3.12 and 4.3.16), in no more memory
// than its directory takes; nothing is unpacked. Blocking; no state; any thread but the UI's.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace Storage {

/// What a package may hold when it is unpacked, and its file must be smaller than: 100 MiB.
inline constexpr std::int64_t maxPackage = 104'857'600;
/// Files and folders together.
inline constexpr int maxPackageEntries = 5'000;

/// What was read of an archive that was accepted.
struct ZipContents {
    struct Entry {
        QByteArray name; ///< UTF-8; a folder's ends in "/"
        std::int64_t header = 0; ///< the place in the file of its header in the central directory
        std::uint32_t method = 0; ///< of its compression; it is not judged

        bool operator==(const Entry &) const = default;
    };
    std::vector<Entry> entries; ///< in the directory's order
    std::int64_t directoryEnd = 0; ///< the place in the file of the end record

    bool operator==(const ZipContents &) const = default;
};

/// Accepts an archive of 1 to 5000 plain files and folders, whole, in one part, not encrypted, without ZIP64, whose
/// sizes add up to 100 MiB or less, and whose names are safe, of 64 folders at most, the same in both places where they
/// are written, and different on a disk that takes capital and small letters for the same. Throws MarluneError with the
/// reason, or the system's failure where the file cannot be read.
ZipContents inspectZip(const std::filesystem::path &url);

/// Says that an archive is broken or dangerous, for whoever finds it so.
[[noreturn]] void refusePackage();

/// Accepts 1 to 5000 names, one a line, none of which leads out of the folder into which it is unpacked. Throws
/// MarluneError.
void validateZipListing(const QString &listing);

} // namespace Storage
