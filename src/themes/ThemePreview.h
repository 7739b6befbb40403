// What a theme looks like. None of its own files shows that, so a picture is looked for in an order of decreasing
// worth: the user's choice, a screenshot in the theme's package, the bare background. The catalogue on the network has
// one of most themes (Catalogue.h).
//
// Blocking; no state; any thread but the UI's. Nothing fails here: what is missing or cannot be read gives less.
#pragma once

#include "themes/Configuration.h"
#include "themes/Themes.h"

#include <QUrl>

#include <optional>
#include <variant>

/// Where a picture is: a file, whose name can be any bytes and so is a path, or an address on the network.
using PicturePlace = std::variant<std::filesystem::path, QUrl>;

/// The pictures known for one theme.
struct ThemePreview {
    std::optional<PicturePlace> playing; ///< of the playing screen (WPS)
    std::optional<PicturePlace> menu; ///< of the menu screen (SBS)
    QString source; ///< where the pictures come from, for the user
    std::optional<QUrl> detail; ///< the theme's page in the catalogue
    std::optional<QString> author;

    bool operator==(const ThemePreview &) const = default;

    /// The SHA-256 of the theme's path, in 64 lower-case hexadecimal digits.
    [[nodiscard]] static QString key(const Theme &theme);
    /// In the settings, the path of a picture that the user chose has this and the theme's key() for its key.
    [[nodiscard]] static QString settingsPrefix();
    /// The chosen pictures' paths by their keys in the settings.
    using ChosenPictures = QMap<QString, QString>;
    /// The preview by a picture that the user chose.
    [[nodiscard]] static ThemePreview chosen(const std::filesystem::path &picture);

    /// The best preview to be had without a network, for a theme of the device at `root` with this configuration.
    /// Nothing but the user's choice is looked for outside the device's `.rockbox`, and no link is followed there.
    [[nodiscard]] static std::optional<ThemePreview> local(const Theme &theme, const std::filesystem::path &root,
        const Configuration &configuration, const ChosenPictures &chosenPictures);
};

/// By theme id.
using ThemePreviews = QMap<QString, ThemePreview>;
