// The themes installed on the device as rows, in their order. A reading of the device keeps the rows of themes that are
// still there. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/RowListModel.h"

#include <QtQml/qqmlregistration.h>

class ThemeListModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The themes presenter has one.")

public:
    enum Role : std::uint16_t {
        NameRole = Qt::UserRole,
        PictureRole, ///< of the playing screen; invalid where there is none
        SourceRole, ///< where the picture comes from, or what can be done where there is none
        ActiveRole, ///< the device is set up to show it
    };

    explicit ThemeListModel(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Absent where there is no such row.
    [[nodiscard]] std::optional<Theme> theme(int row) const;
    [[nodiscard]] QString name(int row) const;

private:
    void refresh();
    void refreshAll(const QList<int> &roles);

    MarluneModel &m_model;
    std::vector<Theme> m_rows;
    QString m_active; ///< id of the active theme, empty for none
};
