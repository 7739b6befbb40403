// What the readers behind MediaAsset share: the shape of their answers and how items are made from what they find.
#pragma once

#include "media/files/MediaAsset.h"
#include "platform/files/RegularFile.h"

#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

struct MediaFacts {
    double seconds = 0; ///< 0 where it is not known
    std::optional<AudioStream> stream;
};

/// A text field and its names in the formats; where there are two, the first that is there counts.
struct TextField {
    std::string_view identifier; ///< ID3v2.4, section 4.2; the item's identifier whatever the file's format
    std::string_view id3v22; ///< ID3v2.2, section 4
    CommonKey commonKey;
    bool isJoined; ///< several values make one shown text
    std::array<const char *, 2> comments; ///< Vorbis comments
    std::array<const char *, 2> ape; ///< APEv2, upper-cased
    const char *mp4;
    const char *info; ///< RIFF INFO
    const char *libav;
};

inline constexpr std::size_t textFieldCount = 7;
[[nodiscard]] std::span<const TextField, textFieldCount> textFields();

namespace TagId {
inline constexpr std::string_view title = "TIT2";
inline constexpr std::string_view artist = "TPE1";
inline constexpr std::string_view album = "TALB";
inline constexpr std::string_view albumArtist = "TPE2";
inline constexpr std::string_view trackNumber = "TRCK";
inline constexpr std::string_view discNumber = "TPOS";
inline constexpr std::string_view date = "TDRC";
inline constexpr std::string_view picture = "APIC";
} // namespace TagId

/// Bytes of the file that nobody has read yet.
struct FileRange {
    std::int64_t position = 0;
    std::int64_t length = 0;
};

/// An encoded picture. One of the three places has bytes.
struct Picture {
    bool isFrontCover = false;
    FileRange inFile {};
    std::span<const char> inReader {}; ///< lives as long as the reader that found it
    QByteArray own {};
};

/// Encoded pictures above this size in bytes are left out, and so are those past this sum.
inline constexpr std::int64_t maxPicture = 10'000'000;
inline constexpr std::int64_t maxPictures = 32'000'000;

[[nodiscard]] AudioStream appleLosslessStream(int sampleRate, std::uint32_t sourceDepth);

/// Several artists of one tag are joined by ", ", as they are written on a sleeve; of any other field's values the
/// first that is not empty counts.
[[nodiscard]] MetadataItem textItem(const TextField &field, const QStringList &values);

/// Appends the pictures, best tag's first, so that the one to show comes last: the first front cover, otherwise the
/// first.
void appendPictures(std::vector<MetadataItem> &items, std::span<const Picture> pictures, const RegularFile &file);
