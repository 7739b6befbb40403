#include "ui/lists/FileListModel.h"

#include "platform/files/PathText.h"

#include <algorithm>
#include <optional>

FileListModel::FileListModel(Text name, Text detail, QObject *parent)
    : RowListModel(parent)
    , m_name(std::move(name))
    , m_detail(std::move(detail))
{
}

int FileListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> FileListModel::roleNames() const
{
    return {{NameRole, "name"}, {DetailRole, "detail"}};
}

QVariant FileListModel::data(const QModelIndex &index, int role) const
{
    const std::optional<std::filesystem::path> shown = file(index.isValid() ? index.row() : -1);
    if (!shown) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return m_name(*shown);
    case DetailRole:
        return m_detail(*shown);
    default:
        return {};
    }
}

void FileListModel::show(const std::vector<std::filesystem::path> &files)
{
    std::vector<Row> rows(files.size());
    std::transform(files.begin(), files.end(), rows.begin(),
        [](const std::filesystem::path &file) { return Row {.id = Files::text(file), .file = file}; });
    const int before = count();
    (void)changeRows(m_rows, rows, [](const Row &row) { return row.id; }); // a row is its file, and no more
    if (before != count()) {
        Q_EMIT countChanged();
    }
}

void FileListModel::refreshDetails()
{
    if (!m_rows.empty()) {
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {DetailRole});
    }
}

std::optional<std::filesystem::path> FileListModel::file(int row) const
{
    return row >= 0 && row < int(m_rows.size()) ? std::optional(m_rows[std::size_t(row)].file) : std::nullopt;
}
