// The albums of the library page as rows.
//
// Rows follow the model's albums a turn of the event loop later, once for a burst of changes; while the page is hidden
// they wait until it is shown or the present job has ended. What stays in place keeps
// its row, so that the page keeps its place too: a few changes arrive as rows put in and taken out, many as a reset.
// Texts of a row are made when it is first shown. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/RowListModel.h"
#include "ui/pictures/CoverStore.h"

#include "platform/tasks/BurstTimer.h"

#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>
#include <vector>

class AlbumListModel : public RowListModel {
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
        SelectedRole, ///< all of it is queued, or on the device selected
        PlayingRole, ///< a track of it is heard
        CoverRole, ///< name in the cover store, empty without artwork
    };

    AlbumListModel(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Opens the album of a row in its sheet.
    Q_INVOKABLE void open(int index);
    /// Asks for a picture to be its cover.
    Q_INVOKABLE void chooseCover(int index);
    /// Opens the search for its cover on the network.
    Q_INVOKABLE void lookUpCover(int index);
    /// Queues or selects the album of a row, or takes it out again.
    Q_INVOKABLE void toggle(int index);
    /// Plays the album from its first track; pauses or resumes where a track of it is loaded.
    Q_INVOKABLE void play(int index);
    /// The pointer nears a play button.
    Q_INVOKABLE void preparePlay() { m_model.playback().prepare(); }
    /// Drops the album from the library; its files stay.
    Q_INVOKABLE void forget(int index);
    /// Shows the album's first file in the file manager.
    Q_INVOKABLE void reveal(int index) const;

Q_SIGNALS:
    /// The rows are those of the model's present albums.
    void refreshed();

private:
    /// What a page shows of one album.
    struct Texts {
        QString language; ///< in which they were made
        QString countAndSize;
        QString format;
        bool highResolution = false;
        QString discs;
        QString cover;
    };
    struct Row {
        QString id;
        std::shared_ptr<const Album> album;
        bool selected = false;
        bool playing = false;
        mutable std::optional<Texts> texts;
    };

    void refreshIfDue();
    void refresh();
    void refreshSelection();
    void refreshPlaying();
    [[nodiscard]] std::vector<Row> rowsFor(const AlbumList &albums) const;
    void replaceRows(std::vector<Row> rows);
    void updateRows(std::vector<Row> rows);
    [[nodiscard]] bool isSelected(const Album &album) const;
    [[nodiscard]] bool isPlaying(const Album &album) const;
    void refreshRows(bool Row::*state, bool (AlbumListModel::*now)(const Album &) const, Role role);
    [[nodiscard]] const Texts &texts(const Row &row) const;
    [[nodiscard]] const Row *row(int index) const;

    MarluneModel &m_model;
    std::shared_ptr<CoverStore> m_covers;
    std::shared_ptr<const AlbumList> m_albums; ///< what m_rows were made of
    std::vector<Row> m_rows;
    bool m_isOutdated = false; ///< the model's albums have changed since
    BurstTimer m_listChange {[this] { refreshIfDue(); }};
    BurstTimer m_selectionChange {[this] { refreshSelection(); }};
};
