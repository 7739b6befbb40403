// The tracks of the library page as rows, and which of them are selected.
//
// Rows follow the model's filtered tracks a turn of the event loop later, once for a burst of changes; while the page
// or its table is hidden they wait. A row holds where its track was and which one it is, and shows nothing once another
// is there: a long list is replaced without a copy. A few changes arrive as rows put in and taken out, many as other
// rows in the same places. Either way what is still there stays selected and the current row. A file that was read
// again is the same row. UI thread.
#pragma once

#include "ui/library/MusicListModel.h"

#include "platform/tasks/BurstTimer.h"

#include <QtQml/qqmlregistration.h>

#include <vector>

class TrackListModel : public MusicListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The library presenter has one.")

public:
    enum Role : std::uint16_t {
        NumberRole = Qt::UserRole, ///< "01 ", empty if unknown
        TitleRole,
        ArtistRole,
        TimeRole,
        FormatRole,
        ParametersRole,
        HighResolutionRole,
        ChosenRole, ///< queued, or on the device selected for a playlist
        PlayingRole,
        MarkedRole, ///< selected in the list
    };

    explicit TrackListModel(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const RowSelection &selection() const override { return m_selection; }
    [[nodiscard]] QString landmark(int row) const override;

    /// The row at the view's upper edge, with the part of it that is scrolled out, and how many rows the view shows.
    Q_INVOKABLE void setView(double topRow, double rowsInView);

    Q_INVOKABLE void toggle(int row);
    /// Plays it with the whole list as its queue; pauses or resumes where it is loaded.
    Q_INVOKABLE void play(int row) override;
    /// The same, but what is heard goes on.
    Q_INVOKABLE void listen(int row);
    /// Opens its album.
    Q_INVOKABLE void activate(int row) override;

protected:
    [[nodiscard]] RowSelection &ownSelection() override { return m_selection; }
    [[nodiscard]] QString nameAt(int row) const override;
    [[nodiscard]] std::vector<const Track *> tracksAbout(int row) const override;

private:
    struct Row {
        QUuid id;
        std::size_t file = 0; ///< as in TrackIdentity
        std::uint32_t place = 0; ///< among the active tracks
    };
    /// The rows as they were listed, for what follows them.
    struct Listed {
        std::vector<Row> rows;
        RowSelection selection;
        double topRow = 0;
        bool onDevice = false;
    };

    void refreshIfShown();
    void refresh();
    [[nodiscard]] std::vector<Row> freshRows() const;
    /// Selects what was selected before.
    void follow(const Listed &before);
    [[nodiscard]] double topAfter(const Listed &before, bool isOtherOrder) const;
    [[nodiscard]] const Row *row(int index) const;
    /// Null where the row's track is not there any more.
    [[nodiscard]] const Track *track(int index) const;
    [[nodiscard]] bool isPlaying(const Row &row) const;
    [[nodiscard]] QString text(const Track &track, int role) const;
    std::vector<Row> m_rows;
    RowSelection m_selection;
    Order m_order; ///< of m_rows
    double m_topRow = 0;
    double m_rowsInView = 0;
    Listed m_gone; ///< when all tracks went: a device that is read again has none in between
    bool m_isOutdated = true;
    BurstTimer m_listChange {[this] { refreshIfShown(); }};
    BurstTimer m_selectionChange {[this] { renew({ChosenRole}); }};
};
