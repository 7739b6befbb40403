// All that one file says by itself, whatever lies around it, and the form in which the library's cache keeps it.
#pragma once

#include "audio/AudioInfo.h"

#include <QByteArray>
#include <QByteArrayView>

#include <filesystem>
#include <optional>

struct FileFacts {
    AudioInfo info; ///< its picture aside, which is the next field
    std::optional<QByteArray> picture; ///< the embedded one; of a picture file, that
    bool hasFlacPicture = false; ///< `info` has that picture too: one of FLAC's own does

    bool operator==(const FileFacts &) const = default;

    /// Reads an audio file; what cannot be read keeps its value of "unknown". Never throws. Blocking; any thread.
    [[nodiscard]] static FileFacts read(const std::filesystem::path &file);

    /// All but the picture.
    [[nodiscard]] QByteArray encoded() const;
    /// Absent for bytes that encoded() does not make. Never throws, whatever they are.
    [[nodiscard]] static std::optional<FileFacts> decoded(QByteArrayView bytes);
};
