// What a search for a cover has found, as rows with a picture each.
//
// A row's picture is fetched from the archive once the row is shown, two at a time, and no larger than a preview is;
// all that is under way ends with the results. UI thread.
#pragma once

#include "artwork/CoverSearch.h"

#include "ui/lists/RowListModel.h"
#include "ui/pictures/CoverStore.h"

#include <QtQml/qqmlregistration.h>

#include <deque>
#include <memory>
#include <vector>

class CoverResultModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The presenter of the search has one.")

public:
    enum Role : std::uint16_t {
        TitleRole = Qt::UserRole,
        FactsRole, ///< "Artist · 1980-07-25 · Album · zgodność 100%"
        PictureRole, ///< name in the cover store, empty while there is none
        AwaitedRole, ///< the picture may still come
    };

    CoverResultModel(CoverSearch &search, std::shared_ptr<CoverStore> covers, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(const std::vector<CoverCandidate> &candidates);
    [[nodiscard]] std::optional<CoverCandidate> candidate(int row) const;
    /// The row has come into sight.
    Q_INVOKABLE void wantPicture(int row);

private:
    enum class Picture : std::uint8_t { Unasked, Awaited, There, Absent };
    struct Row {
        CoverCandidate candidate;
        Picture state = Picture::Unasked;
        QByteArray bytes = {};
    };

    QCoro::Task<> fetch(int row);
    void fetchNext();

    CoverSearch &m_search;
    std::shared_ptr<CoverStore> m_covers;
    std::vector<Row> m_rows;
    std::deque<int> m_waiting; ///< rows, in the order of asking
    int m_underWay = 0;
    std::unique_ptr<QObject> m_exchange = std::make_unique<QObject>(); ///< with the archive, about the present rows
};
