// The sidebar's sections as rows. UI thread.
#pragma once

#include "model/Model.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

class SectionListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shell presenter has one.")
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged)

public:
    enum Role : std::uint16_t {
        TitleRole = Qt::UserRole, ///< the section's text value, shown through the text operation
        SymbolRole,
        CurrentRole,
    };

    explicit SectionListModel(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int currentRow() const { return int(m_current); }
    /// Shows the section of that row; other rows are ignored.
    Q_INVOKABLE void open(int row);

    [[nodiscard]] static QString symbol(Section section);

Q_SIGNALS:
    void currentRowChanged();

private:
    MarluneModel &m_model;
    Section m_current;
};
