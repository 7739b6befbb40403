// The albums of the library page as rows, and which of them are selected.
//
// Rows follow the model's albums a turn of the event loop later, once for a burst of changes; while the page or its
// grid is hidden they wait. What stays in place keeps its row, so that the page keeps its place too: a few changes
// arrive as rows put in and taken out, many as other rows in the same places. Either way what is still there stays
// selected and the current row. Texts of a row are made when it is first shown. UI thread.
#pragma once

#include "ui/library/MusicListModel.h"
#include "ui/pictures/CoverStore.h"

#include "platform/tasks/BurstTimer.h"

#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>
#include <vector>

class AlbumListModel : public MusicListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The library presenter has one.")

public:
    enum Role : std::uint16_t {
        TitleRole = Qt::UserRole,
        ArtistRole,
        CountAndSizeRole, ///< "12 / 345,6 MB"
        FormatRole, ///< of the first track
        HighResolutionRole, ///< some track of it is
        DiscsRole, ///< "2 CD · jeden album", empty for one disc
        ChosenRole, ///< all of it is queued, or on the device selected for a playlist
        PlayingRole, ///< a track of it is heard
        CoverRole, ///< name in the cover store, empty without artwork
        MarkedRole, ///< selected in the grid
    };

    AlbumListModel(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const RowSelection &selection() const override { return m_selection; }
    [[nodiscard]] QString landmark(int row) const override;
    /// The first row in sight, with the part of it that is scrolled out.
    Q_INVOKABLE void setTopRow(double row) { m_topRow = row; }

    /// Queues or selects the album of a row, or takes it out again.
    Q_INVOKABLE void toggle(int row);
    /// Opens the album in its sheet.
    Q_INVOKABLE void activate(int row) override;
    /// Plays the album from its first track; pauses or resumes where a track of it is loaded.
    Q_INVOKABLE void play(int row) override;
    /// Asks for a picture to be its cover.
    Q_INVOKABLE void chooseCover(int row);
    /// Opens the search for its cover on the network.
    Q_INVOKABLE void lookUpCover(int row);
    /// Drops the album from the library; its files stay.
    Q_INVOKABLE void forget(int row);

protected:
    [[nodiscard]] RowSelection &ownSelection() override { return m_selection; }
    /// The artist where albums are in the order of artists, otherwise the title.
    [[nodiscard]] QString nameAt(int row) const override;
    [[nodiscard]] std::vector<const Track *> tracksAbout(int row) const override;
    /// The first file of each album.
    [[nodiscard]] std::vector<std::filesystem::path> filesAbout(int row) const override;

private:
    /// What a page shows of one album.
    struct Texts {
        QString language; ///< in which they were made
        QString title;
        QString artist;
        QString countAndSize;
        QString format;
        bool highResolution = false;
        QString discs;
        QString cover;
    };
    struct Row {
        std::size_t id = 0; ///< a hash of the album's
        std::shared_ptr<const Album> album;
        mutable std::optional<Texts> texts;
    };

    void refreshIfShown();
    void refresh();
    [[nodiscard]] std::vector<Row> rowsFor(const AlbumList &albums) const;
    void replaceRows(std::vector<Row> rows);
    void updateRows(std::vector<Row> rows);
    void follow();
    [[nodiscard]] double topNow(bool isOtherOrder) const;
    [[nodiscard]] bool isChosen(const Album &album) const;
    [[nodiscard]] bool isPlaying(const Album &album) const;
    [[nodiscard]] const Texts &texts(const Row &row) const;
    [[nodiscard]] const Row *row(int index) const;

    std::shared_ptr<CoverStore> m_covers;
    std::shared_ptr<const AlbumList> m_albums; ///< what m_rows were made of
    std::vector<Row> m_rows;
    RowSelection m_selection;
    double m_topRow = 0;
    Order m_order; ///< of m_rows
    /// While all rows are replaced.
    struct {
        std::vector<std::size_t> ids;
        RowSelection selection;
        double topRow = 0;
    } m_before;
    bool m_isOutdated = true; ///< the model's albums have changed since
    BurstTimer m_listChange {[this] { refreshIfShown(); }};
    BurstTimer m_selectionChange {[this] { renew({ChosenRole}); }};
};
