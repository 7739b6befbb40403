// What the selected device holds beside its music: read in the background at each selection and refresh.
#include "model/DeviceContent.h"
#include "model/Model.h"

#include "platform/files/Files.h"
#include "platform/files/FolderItems.h"
#include "platform/text/TextOrder.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace {

/// Bytes of all themes' settings together. Thousands of themes stay below it; a disk full of nonsense does not.
constexpr std::int64_t maxThemeSettings = 16'000'000;

std::vector<std::filesystem::path> playlistsBelow(const std::filesystem::path &root)
{
    std::vector<std::filesystem::path> playlists;
    for (const Files::FolderItem &item : Files::readableItemsOf(root / "Playlists")) {
        std::filesystem::path path = root / "Playlists" / item.name;
        const QString extension = Files::extension(path).toLower();
        const bool listed = extension == QLatin1String("m3u") || extension == QLatin1String("m3u8");
        if (listed && !Files::isDirectory(path)) {
            playlists.push_back(std::move(path));
        }
    }
    std::sort(playlists.begin(), playlists.end());
    return playlists;
}

} // namespace

void sortThemes(std::vector<Theme> &themes)
{
    TextOrder::stableSort(themes, [](const Theme &theme) { return theme.name(); });
}

DeviceContent readDeviceContent(
    const std::filesystem::path &root, const ThemePreview::ChosenPictures &chosenPictures, const std::stop_token &stop)
{
    DeviceContent content;
    content.themes = Storage::themes(root);
    std::int64_t settingsLeft = maxThemeSettings;
    for (const Theme &theme : content.themes) {
        if (stop.stop_requested()) {
            return content;
        }
        Configuration settings;
        if (settingsLeft > 0) {
            settings = configuration(theme.url);
            settingsLeft -= settings.isEmpty() ? 0 : Files::size(theme.url).value_or(0);
        }
        const QString id = theme.id();
        if (const auto preview = ThemePreview::local(theme, root, settings, chosenPictures)) {
            content.themePreviews.insert(id, *preview);
        }
        content.themeSettings.insert(id, settings);
    }
    const std::filesystem::path firmware = root / ".rockbox";
    content.deviceInfo = configuration(firmware / "rockbox-info.txt");
    content.deviceConfig = configuration(firmware / "config.cfg");
    content.playlists = playlistsBelow(root);
    content.volume = Volumes::traits(root);
    content.hasMusicFolder = Files::isDirectory(root / "Music");
    return content;
}

void MarluneModel::loadDeviceContent()
{
    abandonDeviceContent();
    if (!m_device) {
        setDeviceContent({.themes = {},
            .themePreviews = m_content.themePreviews,
            .deviceInfo = m_content.deviceInfo,
            .deviceConfig = m_content.deviceConfig,
            .themeSettings = m_content.themeSettings,
            .playlists = {},
            .volume = std::nullopt});
    } else if (!m_ejecting) { // however that ends, a refresh follows
        runContentLoad(m_device->root);
    }
}

void MarluneModel::abandonDeviceContent()
{
    m_contentGeneration = QUuid::createUuid();
    m_contentReading.request_stop();
    m_contentReading = std::stop_source();
}

QCoro::Task<> MarluneModel::runContentLoad(std::filesystem::path root)
{
    const QPointer<MarluneModel> self(this);
    const QUuid generation = m_contentGeneration;
    const ThemePreview::ChosenPictures chosen = m_environment.settings.textsWithPrefix(ThemePreview::settingsPrefix());
    DeviceContent read;
    try {
        auto work
            = [root, chosen, stop = m_contentReading.get_token()] { return readDeviceContent(root, chosen, stop); };
        read = co_await background(work, JobPriority::Utility);
    } catch (const std::exception &) {
        read = {}; // out of memory and the like: nothing could be read
    }
    if (!self || m_contentGeneration != generation || !m_device || m_device->root != root) {
        co_return;
    }
    if (m_environment.settings.textsWithPrefix(ThemePreview::settingsPrefix()) != chosen) {
        loadDeviceContent(); // the reading began before the user's last choice of a picture
    } else {
        applyContent(std::move(read));
    }
}

void MarluneModel::applyContent(DeviceContent read)
{
    // Previews that came from elsewhere stay.
    ThemePreviews previews = m_content.themePreviews;
    previews.insert(read.themePreviews);
    read.themePreviews = std::move(previews);
    sortThemes(read.themes); // the rules of order may have changed since the reading began
    setDeviceContent(std::move(read));
    if (m_themePreviewStatus.isEmpty()) {
        fetchThemePreviews();
    }
}

void MarluneModel::setDeviceContent(DeviceContent content)
{
    const DeviceContent before = std::exchange(m_content, std::move(content));
    if (before.themes != m_content.themes) {
        const std::vector<Theme> &themes = m_content.themes;
        if (m_openTheme && std::find(themes.begin(), themes.end(), *m_openTheme) == themes.end()) {
            setOpenTheme(std::nullopt);
        }
        Q_EMIT themesChanged();
    }
    if (before.themePreviews != m_content.themePreviews) {
        Q_EMIT themePreviewsChanged();
    }
    if (before.deviceInfo != m_content.deviceInfo || before.deviceConfig != m_content.deviceConfig
        || before.themeSettings != m_content.themeSettings || before.volume != m_content.volume
        || before.hasMusicFolder != m_content.hasMusicFolder) {
        Q_EMIT deviceSettingsChanged();
    }
    if (before.playlists != m_content.playlists) {
        Q_EMIT playlistsChanged();
    }
}

void MarluneModel::forgetDeviceContent()
{
    DeviceContent rest;
    rest.themePreviews = m_content.themePreviews;
    setDeviceContent(std::move(rest));
}

void MarluneModel::forgetThemePreviews()
{
    if (!m_content.themePreviews.isEmpty()) {
        m_content.themePreviews.clear();
        Q_EMIT themePreviewsChanged();
    }
    setThemePreviewStatus({});
    m_previewRequest.reset();
}

void MarluneModel::setThemePreviewStatus(const QString &status)
{
    if (m_themePreviewStatus != status) {
        m_themePreviewStatus = status;
        Q_EMIT themePreviewStatusChanged();
    }
}
