// The tracks of one album as rows, disc by disc; where there are several, each disc has a row of its own above its
// tracks.
//
// A file keeps its row as long as it belongs to the album, so that a view keeps its place when the library is read
// again. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/RowListModel.h"

#include "platform/tasks/BurstTimer.h"

#include <QtQml/qqmlregistration.h>

#include <memory>
#include <vector>

class DiscTrackListModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A sheet's presenter has one.")

public:
    enum Role : std::uint16_t {
        HeadingRole = Qt::UserRole, ///< "2 · Utwory: 12" for a disc, empty for a track; the rest is a track's
        TitleRole,
        NumberRole, ///< "07", "—" where it is unknown
        ArtistRole, ///< empty where it is the album's
        DurationRole,
        QueuedRole, ///< queued, or on the device selected
        PlayingRole,
    };

    explicit DiscTrackListModel(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Lists another album, or the same one as it is now. `onDeviceOverride` as the model takes it.
    void show(std::shared_ptr<const Album> album, std::optional<bool> onDeviceOverride);

    /// The row of the track that is next to `row` in steps of `step` (1 or -1), `row` itself if it is one; past the
    /// ends the first or the last. -1 without tracks.
    [[nodiscard]] Q_INVOKABLE int trackAt(int row, int step) const;
    /// Plays a row's track with the album as the queue; pauses or resumes the one that is loaded.
    Q_INVOKABLE void play(int row);
    /// The pointer nears a play button.
    Q_INVOKABLE void preparePlay() { m_model.playback().prepare(); }
    /// Queues or selects the track of a row, or takes it out again.
    Q_INVOKABLE void toggle(int row);
    /// Shows the file in the file manager.
    Q_INVOKABLE void reveal(int row) const;

private:
    struct Row {
        QString id;
        const AlbumDisc *disc = nullptr;
        const Track *track = nullptr; ///< null for the disc's own row
        bool queued = false;
        bool playing = false;
    };

    [[nodiscard]] std::vector<Row> rowsOf(const std::vector<AlbumDisc> &discs) const;
    [[nodiscard]] bool isQueued(const Track &track) const;
    [[nodiscard]] bool isPlaying(const Track &track) const;
    [[nodiscard]] const Track *track(int row) const;
    void refreshStates();

    MarluneModel &m_model;
    std::shared_ptr<const Album> m_album;
    std::optional<bool> m_onDeviceOverride;
    std::shared_ptr<const std::vector<AlbumDisc>> m_discs; ///< what the rows point into
    std::vector<Row> m_rows;
    BurstTimer m_states {[this] { refreshStates(); }};
};
