// One audio file as the media layer sees it: length, first audio stream, tag items. Every format but FLAC comes
// through here; so does a FLAC file that the program's own reader refuses.
//
// Opens the file on first use and never throws: what cannot be read is absent or missing from the list. Blocking;
// one object belongs to one thread, different objects may be used at once.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

/// What is known of the first audio stream; 0 where the format does not say.
struct AudioStream {
    double sampleRate = 0; ///< Hz
    std::uint32_t formatId = 0; ///< four-character code, one of AudioFormat's, otherwise 0
    std::uint32_t formatFlags = 0; ///< Apple Lossless: source depth, 1 = 16, 2 = 20, 3 = 24, 4 = 32 bits
    std::uint32_t bitsPerChannel = 0; ///< 0 for lossy streams

    bool operator==(const AudioStream &) const = default;
};

namespace AudioFormat {
inline constexpr std::uint32_t appleLossless = 0x616C6163; // "alac"
inline constexpr std::uint32_t mpeg4Aac = 0x61616320; // "aac "
} // namespace AudioFormat

/// The meanings that all formats share; most items have none of them.
enum class CommonKey : std::uint8_t { None, Title, Artist, AlbumName, Artwork, CreationDate };

/// One tag item. Whatever the file's format, the identifiers of numbers, dates and album artists are ID3's (ID3v2.4,
/// section 4.2): "TRCK", "TPOS", "TDRC", "TPE2".
struct MetadataItem {
    CommonKey commonKey = CommonKey::None;
    QString identifier;
    std::optional<QString> text;
    std::optional<QByteArray> data; ///< an encoded picture

    bool operator==(const MetadataItem &) const = default;
};

class MediaAsset {
public:
    explicit MediaAsset(std::filesystem::path file);
    ~MediaAsset();
    MediaAsset(MediaAsset &&) noexcept;
    MediaAsset &operator=(MediaAsset &&) noexcept;

    /// Above 0 and below 10^8, otherwise absent.
    [[nodiscard]] std::optional<double> durationSeconds();
    /// Absent unless its sample rate is known: above 0 and at most 10^8 Hz.
    [[nodiscard]] std::optional<AudioStream> firstAudioStream();
    /// A later item takes the place of an earlier one with its identifier. So the tag that counts most comes last (an
    /// MP3 file may have three), and pictures come last of all, the one to show (the first front cover, otherwise the
    /// first picture) behind the others: none above 10,000,000 bytes, all together at most 32,000,000. Several artists
    /// of one tag are one text, joined by ", ".
    [[nodiscard]] std::vector<MetadataItem> metadata();

private:
    struct Reading;
    std::unique_ptr<Reading> m_reading;
};
