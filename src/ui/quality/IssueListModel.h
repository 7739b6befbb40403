// The findings of the quality page as rows. UI thread.
#pragma once

#include "quality/QualityIssue.h"

#include "ui/lists/RowListModel.h"

#include <QtQml/qqmlregistration.h>

#include <memory>
#include <vector>

class IssueListModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The quality presenter has one.")

public:
    enum Role : std::uint16_t {
        KindRole = Qt::UserRole,
        TitleRole,
        DetailRole,
        HasPictureRole, ///< whether there is one to make a cover of
        PlacesRole, ///< where the files are, a line each; empty for an album
    };
    /// Shared, because filtering is no reason to copy tracks.
    using Issues = std::vector<std::shared_ptr<const QualityIssue>>;

    explicit IssueListModel(QObject *parent = nullptr)
        : RowListModel(parent)
    {
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(Issues issues);
    /// Null where there is no such row.
    [[nodiscard]] std::shared_ptr<const QualityIssue> issue(int row) const;

private:
    Issues m_issues;
};
