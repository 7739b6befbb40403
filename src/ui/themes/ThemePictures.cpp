#include "ui/themes/ThemePictures.h"

#include "ui/LocalPath.h"

QUrl ThemePictures::address(const std::optional<PicturePlace> &place)
{
    if (!place) {
        return {};
    }
    if (const auto *file = std::get_if<std::filesystem::path>(&*place)) {
        return fileUrl(*file);
    }
    return std::get<QUrl>(*place);
}

QUrl ThemePictures::ofConfiguredTheme(const MarluneModel &model)
{
    const std::optional<Theme> theme = model.configuredTheme();
    const ThemePreview preview = theme ? model.themePreviews().value(theme->id()) : ThemePreview {};
    return address(preview.playing ? preview.playing : preview.menu);
}
