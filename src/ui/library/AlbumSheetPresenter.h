// The album that a sheet is about, as its side of the library has it now: a rescan, a new cover or a change of the
// queue shows at once. At rest while the sheet is closed. UI thread.
#pragma once

#include "ui/library/CoverSearchPresenter.h"
#include "ui/library/DiscTrackListModel.h"
#include "ui/words/Wording.h"

#include "media/pictures/Images.h"

#include <QtQml/qqmlregistration.h>

class AlbumSheetPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes one for each sheet.")
    Q_PROPERTY(bool wanted READ wanted NOTIFY changed)
    /// The library still has the album. If not, the rest is as it was last.
    Q_PROPERTY(bool available READ available NOTIFY changed)
    Q_PROPERTY(QString albumTitle READ albumTitle NOTIFY changed)
    Q_PROPERTY(QString artist READ artist NOTIFY changed)
    /// "Utwory: 12 · 45:10 · 345,6 MB"
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    /// "FLAC · 16-bit / 44.1 kHz", of the first track
    Q_PROPERTY(QString format READ format NOTIFY changed)
    /// Name in the cover store, empty without artwork.
    Q_PROPERTY(QString cover READ cover NOTIFY changed)
    /// Pixels of the cover's longer edge, 0 where it is no picture; and "500 × 500 · JPEG · 63,1 kB".
    Q_PROPERTY(int coverSide READ coverSide NOTIFY changed)
    Q_PROPERTY(QString coverFacts READ coverFacts NOTIFY changed)
    /// The page that the cover was downloaded from is known.
    Q_PROPERTY(bool hasSource READ hasSource NOTIFY changed)
    Q_PROPERTY(bool deviceSide READ deviceSide NOTIFY changed)
    Q_PROPERTY(bool canTransfer READ canTransfer NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    /// All of it is queued, or on the device selected.
    Q_PROPERTY(bool queued READ queued NOTIFY changed)
    /// A track of it is heard.
    Q_PROPERTY(bool playing READ playing NOTIFY changed)
    /// What is being done, and how it ended, of the work that was seen since the sheet was opened.
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(DiscTrackListModel *tracks READ tracks CONSTANT)
    Q_PROPERTY(CoverSearchPresenter *coverSearch READ coverSearch CONSTANT)

public:
    /// `onDeviceOverride` names the side that its albums are on, whichever is shown; absent: the one that is.
    AlbumSheetPresenter(MarluneModel &model, std::shared_ptr<CoverStore> covers,
        std::optional<bool> onDeviceOverride = std::nullopt, QObject *parent = nullptr);

    /// From now on the model's field `openAlbum` opens and closes the sheet.
    void followOpenAlbum();
    void open(const Album &album);

    [[nodiscard]] bool wanted() const { return m_wanted; }
    [[nodiscard]] bool available() const { return m_available; }
    [[nodiscard]] QString albumTitle() const { return Wording::shownName(m_album->title); }
    [[nodiscard]] QString artist() const { return Wording::shownName(Wording::artistText(m_album->artist)); }
    [[nodiscard]] QString facts() const;
    [[nodiscard]] QString format() const;
    [[nodiscard]] QString cover() const;
    [[nodiscard]] int coverSide() const;
    [[nodiscard]] QString coverFacts() const;
    [[nodiscard]] bool hasSource() const { return m_source.isValid(); }
    [[nodiscard]] bool deviceSide() const { return m_onDeviceOverride.value_or(m_model.libraryOnDevice()); }
    [[nodiscard]] bool canTransfer() const { return !busy() && m_model.device().has_value(); }
    [[nodiscard]] bool busy() const { return m_model.busy(); }
    [[nodiscard]] bool queued() const;
    [[nodiscard]] bool playing() const;
    [[nodiscard]] QString status() const;
    [[nodiscard]] DiscTrackListModel *tracks() { return &m_tracks; }
    [[nodiscard]] CoverSearchPresenter *coverSearch() { return &m_coverSearch; }

    /// The sheet has been closed, however that was done.
    Q_INVOKABLE void dismiss();
    /// Copies the album to the device.
    Q_INVOKABLE void transfer() { m_model.transfer(m_album->tracks); }
    /// Plays the album from its first track; pauses or resumes where a track of it is loaded.
    Q_INVOKABLE void play();
    Q_INVOKABLE void toggleQueue() { m_model.toggle(*m_album, m_onDeviceOverride); }
    /// Shows the first file in the file manager.
    Q_INVOKABLE void reveal() const;
    /// Asks for a picture file; or makes a cover of the picture that the album has (`current`).
    Q_INVOKABLE void chooseCover(bool current) { m_model.chooseArtwork(*m_album, current, m_onDeviceOverride); }
    Q_INVOKABLE void findCover() { m_coverSearch.open(*m_album); }
    Q_INVOKABLE void openSource() const;

Q_SIGNALS:
    void changed();
    /// Another album is on show than before.
    void opened();

private:
    void refresh();
    void refreshState();
    [[nodiscard]] bool holdsCurrent() const;

    MarluneModel &m_model;
    std::shared_ptr<CoverStore> m_covers;
    std::optional<bool> m_onDeviceOverride;
    DiscTrackListModel m_tracks {m_model};
    CoverSearchPresenter m_coverSearch {m_model, m_covers, m_onDeviceOverride};
    std::shared_ptr<const Album> m_album = std::make_shared<const Album>(); ///< stays while a closed sheet fades
    std::optional<QByteArray> m_artwork; ///< its cover
    std::optional<ImageFacts> m_coverFacts;
    QUrl m_source; ///< the page that the cover is from
    bool m_follows = false;
    bool m_wanted = false;
    bool m_available = false;
    bool m_sawWork = false;
    BurstTimer m_change {[this] { refresh(); }};
    BurstTimer m_state {[this] { refreshState(); }};
};
