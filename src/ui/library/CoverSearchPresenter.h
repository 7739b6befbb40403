// The search for one album's cover on the network, by hand.
//
// Nothing is asked of anybody before search(). Another search, another album and the end of the sheet end what is under
// way; what comes of it is dropped. A download that has begun is the model's job and goes on. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/library/CoverResultModel.h"

#include <QtQml/qqmlregistration.h>

#include <memory>

class CoverSearchPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes one for each sheet.")
    Q_PROPERTY(bool wanted READ wanted NOTIFY changed)
    /// What is searched for; the album's own at the start.
    Q_PROPERTY(QString artist READ artist WRITE setArtist NOTIFY changed)
    Q_PROPERTY(QString albumTitle READ albumTitle WRITE setAlbumTitle NOTIFY changed)
    Q_PROPERTY(bool searching READ searching NOTIFY changed)
    Q_PROPERTY(bool downloading READ downloading NOTIFY changed)
    Q_PROPERTY(bool canDownload READ canDownload NOTIFY changed)
    /// How the search, or the download that did not succeed, has ended; empty before.
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(CoverResultModel *results READ results CONSTANT)

public:
    /// `onDeviceOverride` names the side that the albums are on, whichever is shown; absent: the one that is.
    CoverSearchPresenter(MarluneModel &model, const std::shared_ptr<CoverStore> &covers,
        std::optional<bool> onDeviceOverride = std::nullopt, QObject *parent = nullptr);

    /// From now on the model's field `coverLookup` opens and closes the sheet.
    void followCoverLookup();
    void open(const Album &album);

    [[nodiscard]] bool wanted() const { return m_wanted; }
    [[nodiscard]] QString artist() const { return m_artist; }
    void setArtist(const QString &artist);
    [[nodiscard]] QString albumTitle() const { return m_title; }
    void setAlbumTitle(const QString &title);
    [[nodiscard]] bool searching() const { return m_searching != nullptr; }
    [[nodiscard]] bool downloading() const { return m_downloading; }
    [[nodiscard]] bool canDownload() const { return !m_model.busy(); }
    [[nodiscard]] QString message() const;
    [[nodiscard]] CoverResultModel *results() { return &m_results; }

    Q_INVOKABLE void search();
    /// Makes the picture of a row the album's cover, and closes the sheet when that is done.
    Q_INVOKABLE void download(int row);
    /// Opens the page about a row's release with the desktop's browser.
    Q_INVOKABLE void openSource(int row) const;
    /// The sheet has been closed, however that was done.
    Q_INVOKABLE void dismiss();

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> runSearch();
    void clear();
    void followDownload();

    MarluneModel &m_model;
    std::optional<bool> m_onDeviceOverride;
    CoverResultModel m_results;
    QString m_albumId;
    QString m_artist;
    QString m_title;
    QString m_message; ///< Polish
    std::unique_ptr<QObject> m_searching; ///< while a search runs: owns its exchange
    bool m_follows = false;
    bool m_wanted = false;
    bool m_downloading = false;
    bool m_downloaded = false;
};
