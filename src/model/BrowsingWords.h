// The choices on the library page, each with its text: that is what the settings keep and the pages show.
#pragma once

#include <QString>

#include <array>
#include <cstdint>

enum class ViewMode : std::uint8_t { Albums, Tracks, Folders };
inline constexpr std::array allViewModes {ViewMode::Albums, ViewMode::Tracks, ViewMode::Folders};
[[nodiscard]] QString viewModeText(ViewMode mode);
/// Albums for any other text.
[[nodiscard]] ViewMode viewModeFromText(const QString &text);

enum class SortMode : std::uint8_t { Artist, Album, Year, Size };
inline constexpr std::array allSortModes {SortMode::Artist, SortMode::Album, SortMode::Year, SortMode::Size};
[[nodiscard]] QString sortModeText(SortMode mode);
/// Artist for any other text.
[[nodiscard]] SortMode sortModeFromText(const QString &text);

/// Any other text is a filter too: the one codec of that label.
enum class FormatFilter : std::uint8_t { Everything, Flac, Mp3, Aac, Alac, Others };
inline constexpr std::array allFormatFilters {FormatFilter::Everything, FormatFilter::Flac, FormatFilter::Mp3,
    FormatFilter::Aac, FormatFilter::Alac, FormatFilter::Others};
[[nodiscard]] QString formatFilterText(FormatFilter filter);
/// Whether a codec's label passes the filter of this text. "Others" is all but the two most common codecs.
[[nodiscard]] bool passesFormatFilter(const QString &codec, const QString &filter);
