#include "ui/themes/ThemeListModel.h"

#include "ui/themes/ThemePictures.h"
#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

ThemeListModel::ThemeListModel(MarluneModel &model, QObject *parent)
    : RowListModel(parent)
    , m_model(model)
{
    for (const auto signal : {&MarluneModel::themesChanged, &MarluneModel::deviceSettingsChanged}) {
        connect(&m_model, signal, this, &ThemeListModel::refresh);
    }
    connect(&m_model, &MarluneModel::themePreviewsChanged, this, [this] { refreshAll({PictureRole, SourceRole}); });
    refresh();
}

int ThemeListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> ThemeListModel::roleNames() const
{
    return {{NameRole, "name"}, {PictureRole, "picture"}, {SourceRole, "source"}, {ActiveRole, "active"}};
}

QVariant ThemeListModel::data(const QModelIndex &index, int role) const
{
    const std::optional<Theme> shown = theme(index.isValid() ? index.row() : -1);
    if (!shown) {
        return {};
    }
    const auto preview = [&] { return m_model.themePreviews().value(shown->id()); };
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return Wording::shownName(shown->name());
    case PictureRole:
        return ThemePictures::address(m_model, preview().playing);
    case SourceRole:
        return AppLocalizer::text(m_model.themePreviews().contains(shown->id())
                ? preview().source
                : QStringLiteral("Dodaj własny zrzut lub pobierz podgląd"));
    case ActiveRole:
        return shown->id() == m_active;
    default:
        return {};
    }
}

std::optional<Theme> ThemeListModel::theme(int row) const
{
    return row >= 0 && row < int(m_rows.size()) ? std::optional(m_rows[std::size_t(row)]) : std::nullopt;
}

QString ThemeListModel::name(int row) const
{
    return data(index(row), NameRole).toString();
}

void ThemeListModel::refresh()
{
    const std::optional<Theme> active = m_model.configuredTheme();
    m_active = active ? active->id() : QString();
    (void)changeRows(m_rows, m_model.themes(), [](const Theme &theme) { return theme.id(); }); // a theme is its file
    refreshAll({ActiveRole});
}

void ThemeListModel::refreshAll(const QList<int> &roles)
{
    if (!m_rows.empty()) {
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), roles);
    }
}
