// All models of iPods as rows, in their order. UI thread.
#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

class ModelListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT

public:
    enum Role : std::uint16_t {
        ProfileIdRole = Qt::UserRole,
        NameRole,
        SupportRole,
        SupportedRole, ///< whether there is firmware for it
    };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
};
