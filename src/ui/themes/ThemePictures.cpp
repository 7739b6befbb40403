#include "ui/themes/ThemePictures.h"

#include "ui/LocalPath.h"

QUrl ThemePictures::address(const MarluneModel &model, const std::optional<PicturePlace> &place)
{
    if (!place) {
        return {};
    }
    if (const auto *file = std::get_if<std::filesystem::path>(&*place)) {
        QUrl url = fileUrl(*file);
        url.setFragment(QString::number(model.themePreviewRevision()));
        return url;
    }
    return std::get<QUrl>(*place);
}

QUrl ThemePictures::ofConfiguredTheme(const MarluneModel &model)
{
    const std::optional<Theme> theme = model.configuredTheme();
    const ThemePreview preview = theme ? model.themePreviews().value(theme->id()) : ThemePreview {};
    return address(model, preview.playing ? preview.playing : preview.menu);
}
