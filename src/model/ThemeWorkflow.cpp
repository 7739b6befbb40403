// The themes of the selected device: which one is active, and the pictures that the user gives them.
#include "model/Model.h"

#include "artwork/Artwork.h"

#include "platform/Files.h"
#include "platform/Images.h"
#include "platform/MarluneError.h"

#include <QPointer>

namespace {

/// Bytes. A photograph stays below it; a film chosen by mistake does not.
constexpr std::int64_t largestPicture = 64'000'000;

/// Absent if the file is no picture or cannot be read.
std::optional<QByteArray> readPicture(const std::filesystem::path &file)
{
    constexpr int side = 64; // it need not be looked at, only be there
    std::optional<QByteArray> bytes = Files::readBelow(file, largestPicture);
    if (bytes && decodeImage(*bytes, side).isNull()) {
        bytes.reset();
    }
    return bytes;
}

} // namespace

std::optional<Theme> MarluneModel::configuredTheme() const
{
    const QString wps = QStringLiteral("wps");
    const QString sbs = QStringLiteral("sbs");
    const ThemePreview::Configuration &device = m_content.deviceConfig;
    if (!device.contains(wps)) {
        return std::nullopt;
    }
    std::optional<Theme> sameWps;
    for (const Theme &theme : m_content.themes) {
        const ThemePreview::Configuration settings = m_content.themeSettings.value(theme.id());
        const auto equals = [&](const QString &key) { return settings.contains(key) && settings[key] == device[key]; };
        if (!equals(wps)) {
            continue;
        }
        if (!device.contains(sbs) || equals(sbs)) {
            return theme;
        }
        if (!sameWps) {
            sameWps = theme;
        }
    }
    return sameWps;
}

void MarluneModel::chooseThemePreview(const Theme &theme)
{
    const Panels::Request request {.files = true,
        .folders = false,
        .multiple = false,
        .pictures = true,
        .prompt = QStringLiteral("Dodaj zrzut motywu"),
        .message = {}};
    m_environment.panels.open(
        request, [self = QPointer(this), theme](const std::vector<std::filesystem::path> &chosen) {
            if (self && !chosen.empty()) {
                self->runThemePreviewChoice(theme, chosen.front());
            }
        });
}

QCoro::Task<> MarluneModel::runThemePreviewChoice(Theme theme, std::filesystem::path file)
{
    const QPointer<MarluneModel> self(this);
    const int choice = ++m_previewChoices;
    std::optional<QByteArray> picture;
    try {
        auto read = [file] { return readPicture(file); };
        picture = co_await background(read);
    } catch (const std::exception &) {
        picture.reset(); // out of memory and the like: taken for no picture
    }
    const QString key = ThemePreview::key(theme);
    if (!self || !picture || m_newestPreviewChoice.value(key) > choice) { // a later choice can be read sooner
        co_return;
    }
    m_newestPreviewChoice.insert(key, choice);
    std::filesystem::path stored;
    std::exception_ptr failure;
    try {
        auto store = [picture = *picture, name = QStringLiteral("theme-") + key, folder = m_environment.supportFolder] {
            return Artwork::cache(picture, name, folder);
        };
        stored = co_await background(store);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!self) {
        co_return;
    }
    if (failure) {
        setAlert(describeFailure(failure));
    } else {
        m_environment.settings.setText(ThemePreview::settingsPrefix() + key, Files::text(stored));
        m_content.themePreviews.insert(theme.id(), ThemePreview::chosen(stored));
        Q_EMIT themePreviewsChanged(); // also where the record stays: the file of that name is another one
    }
}
