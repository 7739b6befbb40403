// One audio file, on the computer or on the device.
#pragma once

#include "audio/AudioInfo.h"

#include <QByteArray>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <filesystem>
#include <optional>

struct Track {
    QUuid id; ///< made anew at each read: nothing that lasts may store it
    std::filesystem::path url; ///< where the file is
    QString title; ///< never empty
    QString artist; ///< album artist if known, otherwise artist, otherwise a folder's name
    QString album; ///< the tag, otherwise the folder's name
    std::optional<QByteArray> artwork; ///< encoded cover chosen at import; tracks of equal covers share the bytes
    std::int64_t bytes = 0; ///< file size, 0 if unknown
    AudioInfo info;
    bool hasEmbeddedArt = false; ///< the file itself carries a picture, whatever `artwork` became

    bool operator==(const Track &) const = default;
};
