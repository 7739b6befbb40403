// The pages of the sidebar, in its order.
#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

enum class Section : std::uint8_t { Device, Music, Playlists, Themes, Backups, Quality, Guide };

inline constexpr std::array allSections {Section::Device, Section::Music, Section::Playlists, Section::Themes,
    Section::Backups, Section::Quality, Section::Guide};

/// The title, which is the section's text value.
[[nodiscard]] QString sectionTitle(Section section);
/// Absent for a text that is no title.
[[nodiscard]] std::optional<Section> sectionFromTitle(const QString &title);
