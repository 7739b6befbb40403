// What the playlists page shows beyond the model's own fields: what a new playlist would hold, and the device's
// playlists with their lengths.
//
// Lengths are read while the page is shown, and not while a job runs, which may be about to let the disk go.
// UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/FigureReader.h"
#include "ui/lists/FileListModel.h"

#include "platform/tasks/BurstTimer.h"

class PlaylistsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(FileListModel *playlists READ playlists CONSTANT)
    /// "12 utworów: ostatnie transfery i zaznaczone albumy z iPoda."
    Q_PROPERTY(QString content READ content NOTIFY changed)
    Q_PROPERTY(bool canSave READ canSave NOTIFY changed)

public:
    explicit PlaylistsPresenter(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] FileListModel *playlists() { return &m_playlists; }
    [[nodiscard]] QString content() const;
    [[nodiscard]] bool canSave() const;

    /// Shows the playlist of a row in the file manager.
    Q_INVOKABLE void reveal(int row) const;

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] bool isShown() const { return m_model.section() == Section::Playlists; }
    [[nodiscard]] QString detail(const std::filesystem::path &playlist) const;
    void refresh();
    void readLengths();

    MarluneModel &m_model;
    FigureReader m_lengths;
    FileListModel m_playlists;
    BurstTimer m_change {[this] { refresh(); }};
    BurstTimer m_reading {[this] { readLengths(); }};
    std::size_t m_tracks = 0; ///< that a new playlist would hold
};
