// All that one file says by itself, whatever lies around it.
#pragma once

#include "audio/AudioInfo.h"

#include <QByteArray>

#include <filesystem>
#include <optional>

struct FileFacts {
    AudioInfo info; ///< its picture aside, which is the next field
    std::optional<QByteArray> picture; ///< the embedded one; of a picture file, that
    bool hasFlacPicture = false; ///< `info` has that picture too: one of FLAC's own does

    bool operator==(const FileFacts &) const = default;

    /// Reads an audio file; what cannot be read keeps its value of "unknown". Never throws. Blocking; any thread.
    [[nodiscard]] static FileFacts read(const std::filesystem::path &file);
};
