// The themes of the selected device: which one is active.
#include "model/Model.h"

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
