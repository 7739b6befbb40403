// Files as rows of a name and a line about each. Names come from anywhere and are shown as they can be shown: see
// Wording::fileName(). UI thread.
#pragma once

#include "ui/lists/RowListModel.h"

#include <QtQml/qqmlregistration.h>

#include <filesystem>
#include <functional>
#include <vector>

class FileListModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The page's presenter has one.")
    Q_PROPERTY(int count READ count NOTIFY countChanged) ///< a view's own follows a frame later

public:
    enum Role : std::uint16_t {
        NameRole = Qt::UserRole,
        DetailRole, ///< may be empty: not known yet
    };
    /// Both are asked whenever a row is shown.
    using Text = std::function<QString(const std::filesystem::path &file)>;

    FileListModel(Text name, Text detail, QObject *parent = nullptr);

    [[nodiscard]] int count() const { return int(m_rows.size()); }
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(const std::vector<std::filesystem::path> &files);
    /// The lines about the files may have become others.
    void refreshDetails();
    /// Absent where there is no such row.
    [[nodiscard]] std::optional<std::filesystem::path> file(int row) const;

Q_SIGNALS:
    void countChanged();

private:
    struct Row {
        QString id;
        std::filesystem::path file;
    };

    Text m_name;
    Text m_detail;
    std::vector<Row> m_rows;
};
