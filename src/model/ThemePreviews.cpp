// The previews that the catalogue on the network has of the installed themes.
#include "model/Model.h"

#include <QPointer>

QUrl MarluneModel::themeCataloguePage() const
{
    return Catalogue::listPage(Catalogue::Site::ofThePublic().root, themeTarget());
}

QString MarluneModel::themeTarget() const
{
    return m_content.deviceInfo.value(QStringLiteral("Target"), Catalogue::defaultTarget());
}

void MarluneModel::fetchThemePreviews()
{
    if (!m_content.themes.empty()) {
        setThemePreviewStatus(QStringLiteral("Pobieram podglądy z Rockbox…"));
        runPreviewFetch();
    }
}

QCoro::Task<> MarluneModel::runPreviewFetch()
{
    const QPointer<MarluneModel> self(this);
    m_previewRequest = std::make_unique<QObject>(); // the end of one before it
    const QPointer<QObject> request(m_previewRequest.get());
    std::optional<ThemePreviews> found;
    try {
        auto fetch = Catalogue::catalog(m_content.themes, themeTarget(), m_environment.themeSite, *request);
        found = co_await fetch;
    } catch (const std::exception &) {
        found.reset(); // the user need not know why
    }
    if (!self || !request) { // previews of another device are wanted by now, or the same once more
        co_return;
    }
    if (found) {
        applyPreviews(*found);
        setThemePreviewStatus(QStringLiteral("Podglądy katalogowe: ") + QString::number(found->size())
            + QStringLiteral(". Wersja motywu może różnić się od zainstalowanej."));
    } else {
        setThemePreviewStatus(QStringLiteral("Katalog jest niedostępny. Możesz dodać własne zrzuty."));
    }
}

void MarluneModel::applyPreviews(const ThemePreviews &found)
{
    const QString chosen = ThemePreview::chosen({}).source;
    ThemePreviews previews = m_content.themePreviews;
    for (auto preview = found.begin(); preview != found.end(); ++preview) {
        if (previews.value(preview.key()).source != chosen) {
            previews.insert(preview.key(), *preview);
        }
    }
    if (previews != m_content.themePreviews) {
        m_content.themePreviews = std::move(previews);
        Q_EMIT themePreviewsChanged();
    }
}
