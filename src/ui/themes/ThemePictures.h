// The addresses under which the pages show themes' pictures. UI thread.
#pragma once

#include "model/Model.h"

#include <QUrl>

namespace ThemePictures {

/// Empty where there is none. Another one after each change of the previews: a file can be replaced under its old name.
[[nodiscard]] QUrl address(const MarluneModel &model, const std::optional<PicturePlace> &place);
/// Of the playing screen of the theme that the device has active, else of its menu.
[[nodiscard]] QUrl ofConfiguredTheme(const MarluneModel &model);

} // namespace ThemePictures
