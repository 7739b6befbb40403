#include "ui/themes/ThemePictures.h"

#include "ui/LocalPath.h"

QUrl ThemePictures::address(const std::optional<PicturePlace> &place, int revision)
{
    if (!place) {
        return {};
    }
    if (const auto *file = std::get_if<std::filesystem::path>(&*place)) {
        QUrl url = fileUrl(*file);
        url.setFragment(QString::number(revision));
        return url;
    }
    return std::get<QUrl>(*place);
}

QUrl ThemePictures::ofConfiguredTheme(const MarluneModel &model, int revision)
{
    const std::optional<Theme> theme = model.configuredTheme();
    const ThemePreview preview = theme ? model.themePreviews().value(theme->id()) : ThemePreview {};
    return address(preview.playing ? preview.playing : preview.menu, revision);
}
