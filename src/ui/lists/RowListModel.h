// The base of list models whose rows follow something else, and change in as few steps as they can, so that a view
// keeps its place. UI thread.
#pragma once

#include "ui/lists/RowChanges.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <algorithm>

class RowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Only the lists themselves are made.")
    Q_PROPERTY(int count READ count NOTIFY countChanged) ///< a view's own follows a frame later

public:
    [[nodiscard]] int count() const { return rowCount(); }

Q_SIGNALS:
    void countChanged();
    /// A number may stand for another row than before.
    void renumbered();

protected:
    explicit RowListModel(QObject *parent = nullptr)
        : QAbstractListModel(parent)
    {
        connect(this, &QAbstractItemModel::rowsInserted, this, &RowListModel::countChanged);
        connect(this, &QAbstractItemModel::rowsRemoved, this, &RowListModel::countChanged);
        connect(this, &QAbstractItemModel::modelReset, this, &RowListModel::countChanged);
        connect(this, &RowListModel::countChanged, this, &RowListModel::renumbered);
    }

    /// Makes all rows new.
    template <typename Row> void resetRows(std::vector<Row> &rows, std::vector<Row> wanted)
    {
        beginResetModel();
        rows = std::move(wanted);
        endResetModel();
    }

    /// Makes the rows other ones where they stand: a view keeps its items, which takes it far less time than new ones.
    /// It is the caller who then tells that all of them have changed.
    template <typename Row> void exchangeRows(std::vector<Row> &rows, std::vector<Row> wanted)
    {
        const auto before = std::ptrdiff_t(rows.size());
        const auto after = std::ptrdiff_t(wanted.size());
        if (after < before) {
            beginRemoveRows({}, int(after), int(before) - 1);
            rows.erase(rows.begin() + after, rows.end());
            endRemoveRows();
        } else if (after > before) {
            beginInsertRows({}, int(before), int(after) - 1);
            rows.insert(rows.end(), wanted.begin() + before, wanted.end());
            endInsertRows();
        }
        rows = std::move(wanted);
        Q_EMIT renumbered();
    }

    /// Makes the identities of `rows` those of `wanted`. True if that was done in steps: rows that stayed are still the
    /// old ones, and it is the caller who exchanges them and tells what changed in them. False: all rows are new.
    template <typename Row, typename IdOf>
    [[nodiscard]] bool changeRows(std::vector<Row> &rows, const std::vector<Row> &wanted, const IdOf &idOf)
    {
        const bool inSteps = changeInSteps(rows, wanted, idOf);
        if (!inSteps) {
            resetRows(rows, wanted);
        }
        return inSteps;
    }

    /// The same, but false if nothing has been done.
    template <typename Row, typename IdOf>
    [[nodiscard]] bool changeInSteps(std::vector<Row> &rows, const std::vector<Row> &wanted, const IdOf &idOf)
    {
        constexpr std::size_t maxSteps = 48; // past that a view is done sooner with all rows anew
        const auto ids = [&](const std::vector<Row> &of) {
            std::vector<std::decay_t<decltype(idOf(of.front()))>> result(of.size());
            std::transform(of.begin(), of.end(), result.begin(), idOf);
            return result;
        };
        const auto steps = RowChanges::plan(ids(rows), ids(wanted), maxSteps);
        if (!steps) {
            return false;
        }
        for (const auto &[kind, first, count] : *steps) {
            if (kind == RowChanges::Step::Kind::Remove) {
                beginRemoveRows({}, first, first + count - 1);
                rows.erase(rows.begin() + first, rows.begin() + first + count);
                endRemoveRows();
            } else {
                beginInsertRows({}, first, first + count - 1);
                rows.insert(rows.begin() + first, wanted.begin() + first, wanted.begin() + first + count);
                endInsertRows();
            }
        }
        return true;
    }
};
