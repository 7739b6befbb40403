// The carousel of the device's albums, in a window of its own: which albums, which of them stands in the middle, what
// is done with it. At rest while the window is closed. UI thread.
#pragma once

#include "model/FlowAlbum.h"
#include "model/Model.h"

#include "ui/flow/FlowPictures.h"
#include "ui/library/AlbumSheetPresenter.h"

#include <QtQml/qqmlregistration.h>

class CoverFlowPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(bool shown READ shown NOTIFY shownChanged)
    Q_PROPERTY(int count READ count NOTIFY itemsChanged)
    /// "12 albumów"
    Q_PROPERTY(QString countText READ countText NOTIFY itemsChanged)
    /// The place in the middle; 0 without items.
    Q_PROPERTY(int index READ index NOTIFY indexChanged)
    Q_PROPERTY(QString albumTitle READ albumTitle NOTIFY currentChanged)
    Q_PROPERTY(QString artist READ artist NOTIFY currentChanged)
    /// "3 / 12 · 10 utworów · 2 CD"
    Q_PROPERTY(QString facts READ facts NOTIFY currentChanged)
    /// Albums are being put in order, or a long job runs; `reading`: the job that reads the device's music.
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool reading READ reading NOTIFY loadingChanged)
    Q_PROPERTY(bool canRead READ canRead NOTIFY loadingChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(FlowPictures *pictures READ pictures CONSTANT)
    /// The sheet of the album that was opened.
    Q_PROPERTY(AlbumSheetPresenter *detail READ detail CONSTANT)

public:
    CoverFlowPresenter(MarluneModel &model, const std::shared_ptr<CoverStore> &covers, QObject *parent = nullptr);
    ~CoverFlowPresenter() override;

    [[nodiscard]] bool shown() const { return m_model.showCoverFlow(); }
    [[nodiscard]] int count() const { return int(m_items->size()); }
    [[nodiscard]] QString countText() const;
    [[nodiscard]] int index() const { return m_items->empty() ? 0 : m_index; }
    [[nodiscard]] QString albumTitle() const;
    [[nodiscard]] QString artist() const;
    [[nodiscard]] QString facts() const;
    [[nodiscard]] bool loading() const { return m_loading || m_model.busy(); }
    [[nodiscard]] bool reading() const { return m_model.readingMusic(); }
    [[nodiscard]] bool canRead() const { return m_model.device().has_value() && !m_model.busy(); }
    /// Of that reading, 0 to 1.
    [[nodiscard]] double progress() const { return m_model.progress(); }
    [[nodiscard]] FlowPictures *pictures() { return &m_pictures; }
    [[nodiscard]] AlbumSheetPresenter *detail() { return &m_detail; }

    /// Puts this place in the middle, or the first or the last where there is no such.
    Q_INVOKABLE void select(int place);
    /// "Title, Artist" of a place; empty where there is none.
    Q_INVOKABLE QString nameAt(int place) const;
    Q_INVOKABLE void openDetail();
    Q_INVOKABLE void read() { m_model.scanDeviceMusic(); }
    /// Plays the album in the middle from its first track.
    Q_INVOKABLE void play();
    /// The window has been closed, however that was done.
    Q_INVOKABLE void dismiss() { m_model.setShowCoverFlow(false); }

    /// The rules of text order have changed.
    void reorder();

Q_SIGNALS:
    void shownChanged();
    /// The window is to come to the front.
    void frontWanted();
    void itemsChanged();
    void indexChanged();
    void currentChanged();
    void loadingChanged();
    void progressChanged();

private:
    using Items = std::vector<FlowAlbum>;

    void follow();
    void rebuild();
    QCoro::Task<> build(std::shared_ptr<const std::vector<Track>> tracks);
    void setItems(std::shared_ptr<const Items> items);
    [[nodiscard]] const FlowAlbum *current() const;

    MarluneModel &m_model;
    FlowPictures m_pictures;
    AlbumSheetPresenter m_detail;
    std::shared_ptr<const Items> m_items = std::make_shared<const Items>();
    std::weak_ptr<const std::vector<Track>> m_source; ///< what the items were made of, or are being; absent: of others
    // Of the last items that there were: a reading begins with none at all.
    QString m_remembered; ///< the album in the middle
    int m_index = 0;
    int m_build = 0; ///< the newest build
    bool m_loading = false;
    bool m_isAtWork = false; ///< since it was shown
    BurstTimer m_change {[this] { follow(); }};
};
