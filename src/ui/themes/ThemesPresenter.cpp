#include "ui/themes/ThemesPresenter.h"

#include "ui/LocalPath.h"
#include "ui/words/Localization.h"

#include "platform/desktop/Desktop.h"
#include "platform/files/Files.h"

namespace {

/// The package that a drop is, absent where it is anything else.
std::optional<std::filesystem::path> packageOf(const QList<QUrl> &urls)
{
    const std::optional<std::filesystem::path> file = urls.size() == 1 ? localPath(urls.front()) : std::nullopt;
    return file && Files::text(file->extension()).toLower() == QStringLiteral(".zip") ? file : std::nullopt;
}

} // namespace

ThemesPresenter::ThemesPresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_themes(model)
{
    for (const auto signal :
        {&MarluneModel::deviceChanged, &MarluneModel::busyChanged, &MarluneModel::themePreviewStatusChanged}) {
        connect(&m_model, signal, this, &ThemesPresenter::changed);
    }
    connect(&m_model, &MarluneModel::sectionChanged, this, &ThemesPresenter::fetchPreviewsOnce);
}

QString ThemesPresenter::note() const
{
    const QString status = m_model.themePreviewStatus();
    return AppLocalizer::text(!status.isEmpty()
            ? status
            : QStringLiteral("Kliknij motyw, aby obejrzeć ekrany menu i odtwarzania. "
                             "Podglądy katalogowe mogą przedstawiać inną wersję motywu."));
}

void ThemesPresenter::fetchPreviewsOnce()
{
    if (m_model.section() == Section::Themes && m_model.themePreviewStatus().isEmpty()) {
        m_model.fetchThemePreviews();
    }
}

void ThemesPresenter::open(int row)
{
    m_model.setOpenTheme(m_themes.theme(row));
}

void ThemesPresenter::choosePicture(int row)
{
    if (const std::optional<Theme> theme = m_themes.theme(row)) {
        m_model.chooseThemePreview(*theme);
    }
}

void ThemesPresenter::reveal(int row) const
{
    if (const std::optional<Theme> theme = m_themes.theme(row)) {
        Desktop::reveal({theme->url});
    }
}

void ThemesPresenter::openCatalogue() const
{
    (void)Desktop::openAddress(m_model.themeCataloguePage());
}

int ThemesPresenter::rowFor(const QString &typed, int modifiers, int current)
{
    return m_typeAhead.takes(typed, modifiers)
        ? m_typeAhead.type(typed, current, m_themes.count(), [this](int row) { return m_themes.name(row); })
        : -1;
}

QString ThemesPresenter::dropTitle(const QList<QUrl> &urls) const
{
    if (!hasDevice()) {
        return AppLocalizer::text(QStringLiteral("Najpierw podłącz urządzenie"));
    }
    if (!canImport()) {
        return AppLocalizer::text(QStringLiteral("Najpierw poczekaj na koniec bieżącej pracy"));
    }
    return AppLocalizer::text(isPackage(urls) ? QStringLiteral("Upuść, aby zainstalować motyw")
                                              : QStringLiteral("Upuść jedną paczkę ZIP z motywem"));
}

bool ThemesPresenter::isPackage(const QList<QUrl> &urls) const
{
    return canImport() && packageOf(urls).has_value();
}

void ThemesPresenter::importDropped(const QList<QUrl> &urls)
{
    if (const std::optional<std::filesystem::path> package = packageOf(urls)) {
        m_model.installTheme(*package);
    }
}
