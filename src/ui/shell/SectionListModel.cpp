#include "ui/shell/SectionListModel.h"

SectionListModel::SectionListModel(MarluneModel &model, QObject *parent)
    : QAbstractListModel(parent)
    , m_model(model)
    , m_current(model.section())
{
    connect(&m_model, &MarluneModel::sectionChanged, this, [this] {
        const Section before = std::exchange(m_current, m_model.section());
        for (const Section section : {before, m_current}) {
            const QModelIndex row = index(int(section));
            Q_EMIT dataChanged(row, row, {CurrentRole});
        }
        Q_EMIT currentRowChanged();
    });
}

int SectionListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(allSections.size());
}

QHash<int, QByteArray> SectionListModel::roleNames() const
{
    return {{TitleRole, "title"}, {SymbolRole, "symbol"}, {CurrentRole, "current"}};
}

QVariant SectionListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Section section = allSections.at(std::size_t(index.row()));
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return sectionTitle(section);
    case SymbolRole:
        return symbol(section);
    case CurrentRole:
        return section == m_current;
    default:
        return {};
    }
}

void SectionListModel::open(int row)
{
    if (row >= 0 && row < rowCount()) {
        m_model.setSection(allSections.at(std::size_t(row)));
    }
}

QString SectionListModel::symbol(Section section)
{
    switch (section) {
    case Section::Device:
        return QStringLiteral("ipod");
    case Section::Music:
        return QStringLiteral("music.note");
    case Section::Playlists:
        return QStringLiteral("music.note.list");
    case Section::Themes:
        return QStringLiteral("paintbrush");
    case Section::Backups:
        return QStringLiteral("clock.arrow.circlepath");
    case Section::Quality:
        return QStringLiteral("sparkles");
    case Section::Guide:
        return QStringLiteral("book.closed");
    }
    return {};
}
