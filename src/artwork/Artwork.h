// Covers: the private store of chosen images, and what Rockbox can show.
//
// Rockbox shows JPEG and BMP files of modest size, and cannot decode progressive JPEG. No state; blocking; any thread,
// but baselineJPEG() is too heavy for the UI's. compatibilityIssue() and those that ask
// whether a cover exists do not fail.
#pragma once

#include "library/Track.h"

#include <QByteArray>
#include <QString>

#include <filesystem>
#include <optional>

class CaselessFolder;

namespace Artwork {

/// Bytes of a picture that the user chooses. A photograph stays below it; a film chosen by mistake does not.
inline constexpr std::int64_t maxFileBytes = 64'000'000;

/// The store's folder below the user's folder for application data.
[[nodiscard]] std::filesystem::path cacheRoot(const std::filesystem::path &supportFolder);

/// Keeps the bytes as they are under `key`.jpg in the store, in place of any earlier ones, and returns where. Makes the
/// store if it is missing. The key is a file name of the caller's making. Throws std::system_error; the earlier file
/// then stays.
std::filesystem::path cache(const QByteArray &data, const QString &key, const std::filesystem::path &supportFolder);

/// Why an image will not do on the device, for the user; absent if it will. Decodes no pixels.
[[nodiscard]] std::optional<QString> compatibilityIssue(const QByteArray &data);

/// Whether a file that Rockbox takes for this track's cover is beside it. The case of names makes no difference.
[[nodiscard]] bool externalCoverExists(const Track &track);
/// The half of that question which has one answer for all music in a folder, of those items.
[[nodiscard]] bool folderCoverExists(const CaselessFolder &items);
/// The other half: a cover of this one track.
[[nodiscard]] bool ownCoverExists(const Track &track, const CaselessFolder &items);

/// The whole image on a white square of 500 pixels, as the one form that is always safe. Throws MarluneError.
[[nodiscard]] QByteArray baselineJPEG(const QByteArray &data);

} // namespace Artwork
