// Copies chosen music onto the device and never replaces a file that is already there.
//
// Stopping at any point leaves only complete files: a file gets its final name in one rename, after its bytes are on
// the medium. A file that is there already is known by its content and skipped, so a run that was cut short is
// resumed by running it again. Blocking; no state; any thread but the UI's.
#pragma once

#include "storage/DeviceAnchor.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

/// One file planned for the device. The three texts become folder names through safeName().
struct TransferFile {
    std::filesystem::path source;
    QString artist;
    QString album;
    std::optional<QString> discFolder; ///< absent for an album of one disc

    bool operator==(const TransferFile &) const = default;
};

/// The outcome of a run; the two counts add up to the number of destinations.
struct TransferResult {
    int copied = 0;
    int skipped = 0; ///< found on the device with identical content
    std::vector<std::filesystem::path>
        destinations; ///< of the files that were asked for, in their order; spelled as on the device
};

namespace Storage {

using TransferProgress = std::function<void(int done, int total)>;

/// Copies `files` to Music/ARTIST/ALBUM[/DISC]/ of the device, looking at it again before each step.
/// `progress` runs on the calling thread after each file and must return quickly.
/// Ends before the next file once `stop` is requested: there are fewer destinations than files then.
/// Throws MarluneError (a text for the user) or std::system_error (the system's own) at the first failure; files
/// finished by then stay.
[[nodiscard]] TransferResult transfer(std::span<const TransferFile> files, const DeviceAnchor &device,
    const TransferProgress &progress, const std::stop_token &stop = {});

} // namespace Storage
