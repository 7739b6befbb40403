// What the selected device holds beside its music, and its reading.
#pragma once

#include "themes/ThemePreview.h"

#include "platform/volumes/Volumes.h"

#include <cstdint>
#include <stop_token>

/// What is known of the device's music: nothing before the first reading of it; a part until one has come to its end,
/// and after one that has not; all of it, be it none.
enum class DeviceReading : std::uint8_t { None, Partial, Complete };

struct DeviceContent {
    std::vector<Theme> themes; ///< in the order shown
    ThemePreviews themePreviews; ///< by theme id
    Configuration deviceInfo; ///< of `.rockbox/rockbox-info.txt`
    Configuration deviceConfig; ///< of `.rockbox/config.cfg`
    QMap<QString, Configuration> themeSettings; ///< by theme id
    std::vector<std::filesystem::path> playlists; ///< by name
    std::optional<Volumes::Traits> volume; ///< that it lies on
    bool hasMusicFolder = false;
};

/// Puts them in the order shown.
void sortThemes(std::vector<Theme> &themes);

/// Reads the device at `root`; what cannot be read is missing. Blocking, any thread but the UI's. Once `stop` is
/// requested it ends soon, with a part of the content.
[[nodiscard]] DeviceContent readDeviceContent(
    const std::filesystem::path &root, const ThemePreview::ChosenPictures &chosenPictures, const std::stop_token &stop);
