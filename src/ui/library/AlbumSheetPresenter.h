// The album that a sheet is about, as the library that is shown has it now: a rescan or a new cover shows at once.
// UI thread.
#pragma once

#include "model/Model.h"

#include "ui/pictures/CoverStore.h"
#include "ui/words/Wording.h"

#include "platform/tasks/BurstTimer.h"

#include <QtQml/qqmlregistration.h>

#include <memory>

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

public:
    /// The model's field that the sheet belongs to.
    enum class Field : std::uint8_t { OpenAlbum, CoverLookup };

    AlbumSheetPresenter(
        MarluneModel &model, std::shared_ptr<CoverStore> covers, Field field, QObject *parent = nullptr);

    [[nodiscard]] bool wanted() const { return field().has_value(); }
    [[nodiscard]] bool available() const { return m_available; }
    [[nodiscard]] QString albumTitle() const { return m_album.title; }
    [[nodiscard]] QString artist() const { return Wording::artistText(m_album.artist); }
    [[nodiscard]] QString facts() const;
    [[nodiscard]] QString format() const;
    [[nodiscard]] QString cover() const;

    /// The sheet has been closed, however that was done.
    Q_INVOKABLE void dismiss();

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] const std::optional<Album> &field() const;
    void refresh();

    MarluneModel &m_model;
    std::shared_ptr<CoverStore> m_covers;
    Field m_field;
    Album m_album; ///< stays while a closed sheet fades
    bool m_available = false;
    BurstTimer m_change {[this] { refresh(); }};
};
