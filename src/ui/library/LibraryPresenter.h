// What the library page shows beyond the model's own fields. UI thread.
//
// Counts follow the list of albums, so that they change in the same moment as the rows do.
#pragma once

#include "ui/library/AlbumListModel.h"
#include "ui/library/FolderTreeModel.h"
#include "ui/library/TrackListModel.h"

#include "platform/tasks/BurstTimer.h"

#include <QObject>
#include <QUrl>

class LibraryPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(AlbumListModel *albums READ albums CONSTANT)
    Q_PROPERTY(TrackListModel *tracks READ tracks CONSTANT)
    Q_PROPERTY(FolderTreeModel *folders READ folders CONSTANT)
    Q_PROPERTY(QStringList viewModes READ viewModes CONSTANT)
    Q_PROPERTY(QString viewMode READ viewMode NOTIFY viewChanged) ///< the model's, or the first of them for any other
    Q_PROPERTY(bool albumsShown READ albumsShown NOTIFY viewChanged)
    Q_PROPERTY(bool tracksShown READ tracksShown NOTIFY viewChanged)
    Q_PROPERTY(bool foldersShown READ foldersShown NOTIFY viewChanged)
    Q_PROPERTY(QStringList formats READ formats CONSTANT)
    Q_PROPERTY(QStringList sortModes READ sortModes CONSTANT)
    /// "Albumy: 12 · Utwory: 140"
    Q_PROPERTY(QString counts READ counts NOTIFY contentChanged)
    /// There is no music at all on the side that is shown.
    Q_PROPERTY(bool withoutMusic READ withoutMusic NOTIFY contentChanged)
    /// Nothing is listed: there is no music, or the filters hide all of it.
    Q_PROPERTY(bool nothingListed READ nothingListed NOTIFY contentChanged)
    Q_PROPERTY(bool highResolutionListed READ highResolutionListed NOTIFY contentChanged)
    Q_PROPERTY(bool canReadDevice READ canReadDevice NOTIFY canReadDeviceChanged)

public:
    LibraryPresenter(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent = nullptr);

    [[nodiscard]] AlbumListModel *albums() { return &m_albums; }
    [[nodiscard]] TrackListModel *tracks() { return &m_tracks; }
    [[nodiscard]] FolderTreeModel *folders() { return &m_folders; }
    [[nodiscard]] QStringList viewModes() const;
    [[nodiscard]] QString viewMode() const { return viewModeText(view()); }
    [[nodiscard]] bool albumsShown() const { return view() == ViewMode::Albums; }
    [[nodiscard]] bool tracksShown() const { return view() == ViewMode::Tracks; }
    [[nodiscard]] bool foldersShown() const { return view() == ViewMode::Folders; }
    [[nodiscard]] QStringList formats() const;
    [[nodiscard]] QStringList sortModes() const;
    [[nodiscard]] QString counts() const;
    [[nodiscard]] bool withoutMusic() const { return m_content.withoutMusic; }
    [[nodiscard]] bool nothingListed() const { return m_content.withoutMusic || m_content.tracks == 0; }
    [[nodiscard]] bool highResolutionListed() const { return m_content.highResolution; }
    [[nodiscard]] bool canReadDevice() const;

    /// Whether a drag with these formats is one of files that are not the program's own.
    [[nodiscard]] Q_INVOKABLE bool takesDrop(const QStringList &formats) const;
    /// Adds dropped files and folders to the library and the queue; other addresses are left out. Nothing while the
    /// model is busy.
    Q_INVOKABLE void importDropped(const QList<QUrl> &urls);

Q_SIGNALS:
    void contentChanged();
    void viewChanged();
    void canReadDeviceChanged();

private:
    struct Content {
        std::size_t albums = 0;
        std::size_t tracks = 0;
        bool withoutMusic = true;
        bool highResolution = false;

        bool operator==(const Content &) const = default;
    };
    void refreshIfDue();
    void refreshContent();
    [[nodiscard]] ViewMode view() const { return viewModeFromText(m_model.viewMode()); }

    MarluneModel &m_model;
    AlbumListModel m_albums;
    TrackListModel m_tracks;
    FolderTreeModel m_folders;
    Content m_content;
    bool m_isOutdated = false; ///< m_content
    BurstTimer m_change {[this] { refreshIfDue(); }};
};
