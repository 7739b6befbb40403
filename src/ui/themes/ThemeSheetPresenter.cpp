#include "ui/themes/ThemeSheetPresenter.h"

#include "ui/themes/ThemePictures.h"
#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"

ThemeSheetPresenter::ThemeSheetPresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model, &MarluneModel::openThemeChanged, this, &ThemeSheetPresenter::refresh);
    connect(&m_model, &MarluneModel::themePreviewsChanged, this, &ThemeSheetPresenter::refresh);
    connect(&m_model, &MarluneModel::deviceSettingsChanged, this, &ThemeSheetPresenter::refresh);
}

void ThemeSheetPresenter::refresh()
{
    m_theme = m_model.openTheme().value_or(m_theme);
    Q_EMIT changed();
}

ThemePreview ThemeSheetPresenter::preview() const
{
    return m_model.themePreviews().value(m_theme.id());
}

QString ThemeSheetPresenter::name() const
{
    return Wording::shownName(m_theme.name());
}

QUrl ThemeSheetPresenter::playingPicture() const
{
    return ThemePictures::address(m_model, preview().playing);
}

QUrl ThemeSheetPresenter::menuPicture() const
{
    return ThemePictures::address(m_model, preview().menu);
}

QString ThemeSheetPresenter::author() const
{
    const std::optional<QString> author = preview().author;
    return author ? Wording::shownName(*author) : AppLocalizer::text(QStringLiteral("Nieznany — sprawdź plik motywu"));
}

QString ThemeSheetPresenter::setting(const QString &key) const
{
    const Configuration settings = m_model.themeSettings().value(m_theme.id());
    return settings.contains(key) ? Wording::shownName(settings.value(key))
                                  : AppLocalizer::text(QStringLiteral("Domyślny"));
}

void ThemeSheetPresenter::reveal() const
{
    Desktop::reveal({m_theme.url});
}

void ThemeSheetPresenter::openPage() const
{
    if (const std::optional<QUrl> page = preview().detail) {
        (void)Desktop::openAddress(*page);
    }
}

QString ThemeSheetPresenter::source() const
{
    const QString source = preview().source;
    return AppLocalizer::text(source.isEmpty() ? QStringLiteral("Nie znaleziono zrzutu tego motywu.") : source);
}
