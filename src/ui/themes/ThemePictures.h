// The addresses under which the pages show themes' pictures. UI thread.
#pragma once

#include "model/Model.h"

#include <QUrl>

namespace ThemePictures {

/// Empty where there is none. A file that is another one under its old name is read again where `revision` differs.
[[nodiscard]] QUrl address(const std::optional<PicturePlace> &place, int revision);
/// Of the playing screen of the theme that the device has active, else of its menu.
[[nodiscard]] QUrl ofConfiguredTheme(const MarluneModel &model, int revision);

} // namespace ThemePictures
