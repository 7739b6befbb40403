// All that one audio file says of itself, technical and tag-like, and the labels under which pages show it.
#pragma once

#include "media/files/MediaAsset.h"

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

struct AudioInfo {
    QString codec; ///< short format label: "FLAC", "ALAC", "AAC", otherwise the extension in upper case
    std::int64_t sampleRate = 0; ///< Hz, 0 if unknown
    std::int64_t bitDepth = 0; ///< bits a sample, 0 if unknown or lossy
    double duration = 0; ///< seconds
    std::int64_t bitrate = 0; ///< mean kb/s over the whole file, 1 kb = 1000 bits; 0 for FLAC
    std::int64_t trackNumber = 0;
    std::int64_t discNumber = 0;
    QString year; ///< the first four characters of the date tag
    QMap<QString, QString> tags; ///< upper-case keys; FLAC: all comments, otherwise TITLE, ARTIST, ALBUM, ALBUMARTIST
    std::optional<QByteArray> picture; ///< the embedded picture, encoded

    bool operator==(const AudioInfo &) const = default;

    /// Reads a file of any format; what cannot be read keeps its value of "unknown". `asset` is of the same file.
    /// Never throws. Blocking; any thread.
    [[nodiscard]] static AudioInfo read(const std::filesystem::path &file, MediaAsset &asset);

    /// Reads the metadata blocks at the head of a FLAC file, no audio. Throws MarluneError where the file is no FLAC or
    /// its blocks do not fit together, std::system_error where it cannot be read.
    [[nodiscard]] static AudioInfo readFLAC(const std::filesystem::path &file);

    /// "16-bit / 44.1 kHz", "≈ 320 kb/s · 44.1 kHz", "48 kHz" or "Parametry nieznane".
    [[nodiscard]] QString parameters() const;
};

/// Takes the tag items of a file that is not FLAC over into `info`: numbers, year and the four tags. Later items win.
/// Returns the picture that the items hold.
std::optional<QByteArray> applyTagItems(const std::vector<MetadataItem> &items, AudioInfo &info);

/// "3:05", "1:01:01", or "—" for what is no duration. Seconds are cut, not rounded.
[[nodiscard]] QString durationLabel(double seconds);

/// One entry a field under the field's name; `picture` in Base64, only where there is one.
[[nodiscard]] QJsonObject toJson(const AudioInfo &info);
/// Absent where a field other than `picture` is missing or has another type.
[[nodiscard]] std::optional<AudioInfo> audioInfoFromJson(const QJsonObject &object);
