// The addresses under which the pages show themes' pictures. UI thread.
#pragma once

#include "model/Model.h"

#include <QUrl>

namespace ThemePictures {

/// Of a picture among the model's previews; empty where there is none. After a change of those it is another one, so
/// that a file which was replaced under its old name is read again.
[[nodiscard]] QUrl address(const MarluneModel &model, const std::optional<PicturePlace> &place);
/// Of the playing screen of the theme that the device has active, else of its menu.
[[nodiscard]] QUrl ofConfiguredTheme(const MarluneModel &model);

} // namespace ThemePictures
