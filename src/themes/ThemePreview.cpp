#include "themes/ThemePreview.h"

#include "platform/files/Files.h"
#include "platform/files/Sha256.h"

namespace {

bool isPlainFile(const std::filesystem::path &path)
{
    return Files::kindOrNone(path) == Files::Kind::File;
}

/// Whether all folders of `relative` below `root` are folders and no links.
bool arePlainFolders(const std::filesystem::path &root, const std::filesystem::path &relative)
{
    std::filesystem::path folder = root;
    for (const std::filesystem::path &piece : relative) {
        folder /= piece;
        if (Files::kindOrNone(folder) != Files::Kind::Folder) {
            return false;
        }
    }
    return true;
}

/// The path below the device's root that a setting names. Absent where it leads, or might lead, out of `.rockbox`.
std::optional<std::filesystem::path> firmwarePath(const Configuration &configuration, const QString &key)
{
    const QString value = configuration.value(key);
    const bool inside = value.startsWith(QLatin1String("/.rockbox/")) && !value.contains(QLatin1String(".."));
    // The system would take a name only up to a NUL, which is another one.
    return inside && !value.contains(QChar(u'\0')) ? std::optional(Files::fromText(value.mid(1))) : std::nullopt;
}

std::optional<std::filesystem::path> packageScreenshot(const Theme &theme)
{
    for (const char *ending : {".png", ".jpg", "-preview.png"}) {
        std::filesystem::path picture = theme.url.parent_path() / theme.url.stem();
        picture += ending;
        if (isPlainFile(picture)) {
            return picture;
        }
    }
    return std::nullopt;
}

std::optional<ThemePreview> background(const std::filesystem::path &root, const Configuration &configuration)
{
    const QString source = QStringLiteral("Tło motywu — bez elementów interfejsu");
    if (const auto wps = firmwarePath(configuration, QStringLiteral("wps"))) {
        // A screen's companions lie in a folder of its name.
        const std::filesystem::path folder = std::filesystem::path(*wps).replace_extension();
        const std::filesystem::path playing = root / folder / "backdrop_wps.bmp";
        if (arePlainFolders(root, folder) && isPlainFile(playing)) {
            const std::filesystem::path menu = root / folder / "backdrop_sbs.bmp";
            return ThemePreview {.playing = playing,
                .menu = isPlainFile(menu) ? std::optional<PicturePlace>(menu) : std::nullopt,
                .source = source,
                .detail = {},
                .author = {}};
        }
    }
    const auto backdrop = firmwarePath(configuration, QStringLiteral("backdrop"));
    if (backdrop && arePlainFolders(root, backdrop->parent_path()) && isPlainFile(root / *backdrop)) {
        return ThemePreview {.playing = root / *backdrop, .menu = {}, .source = source, .detail = {}, .author = {}};
    }
    return std::nullopt;
}

} // namespace

QString ThemePreview::key(const Theme &theme)
{
    return sha256Text(theme.url.native());
}

QString ThemePreview::settingsPrefix()
{
    return QStringLiteral("theme-preview-");
}

ThemePreview ThemePreview::chosen(const std::filesystem::path &picture)
{
    return {.playing = picture, .menu = {}, .source = QStringLiteral("Twój zrzut"), .detail = {}, .author = {}};
}

std::optional<ThemePreview> ThemePreview::local(const Theme &theme, const std::filesystem::path &root,
    const Configuration &configuration, const ChosenPictures &chosenPictures)
{
    const auto choice = chosenPictures.constFind(settingsPrefix() + key(theme));
    if (choice != chosenPictures.constEnd() && Files::exists(Files::fromText(*choice))) {
        return chosen(Files::fromText(*choice));
    }
    if (const auto screenshot = packageScreenshot(theme)) {
        return ThemePreview {
            .playing = *screenshot, .menu = {}, .source = QStringLiteral("Zrzut z paczki"), .detail = {}, .author = {}};
    }
    return background(root, configuration);
}
