#include "ui/library/AlbumSheetPresenter.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/text/ByteCount.h"

#include <algorithm>
#include <numeric>

AlbumSheetPresenter::AlbumSheetPresenter(
    MarluneModel &model, std::shared_ptr<CoverStore> covers, std::optional<bool> onDeviceOverride, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_covers(std::move(covers))
    , m_onDeviceOverride(onDeviceOverride)
{
    m_change.follow(m_model, &MarluneModel::tracksChanged, &MarluneModel::artworkChanged,
        &MarluneModel::libraryOnDeviceChanged, &MarluneModel::coverDownloaded);
    connect(&m_model, &MarluneModel::busyChanged, this, [this] { // at once: it may be over in the next turn
        m_sawWork = m_sawWork || (m_wanted && m_model.busy());
    });
    m_state.follow(m_model, &MarluneModel::busyChanged, &MarluneModel::statusChanged, &MarluneModel::deviceChanged,
        &MarluneModel::selectionChanged);
    m_state.follow(m_model.playback(), &Playback::currentChanged, &Playback::playingChanged);
}

void AlbumSheetPresenter::followOpenAlbum()
{
    m_follows = true;
    const auto follow = [this] {
        if (m_model.openAlbum()) {
            open(*m_model.openAlbum());
        } else if (m_wanted) {
            dismiss();
        }
    };
    connect(&m_model, &MarluneModel::openAlbumChanged, this, follow);
    follow();
}

void AlbumSheetPresenter::open(const Album &album)
{
    const bool isOther = !m_wanted || album.id() != m_album->id();
    if (isOther) {
        m_coverSearch.dismiss();
        m_album = std::make_shared<const Album>(album);
        m_sawWork = m_model.busy();
    }
    m_wanted = true;
    refresh();
    if (isOther) {
        Q_EMIT opened();
    }
}

void AlbumSheetPresenter::dismiss()
{
    m_coverSearch.dismiss();
    m_wanted = false;
    Q_EMIT changed();
    if (m_follows) {
        m_model.setOpenAlbum(std::nullopt);
    }
}

void AlbumSheetPresenter::refresh()
{
    if (!m_wanted) {
        return;
    }
    const std::shared_ptr<const Album> now = m_model.albumOf(m_album->id(), m_onDeviceOverride);
    m_available = now != nullptr;
    if (now) {
        m_album = now;
    }
    m_artwork = m_album->artworkBytes();
    m_coverFacts = m_artwork ? imageFacts(*m_artwork) : std::nullopt;
    m_source = m_model.coverSource(m_album->id());
    m_tracks.show(m_album, m_onDeviceOverride);
    Q_EMIT changed();
    m_covers->prune();
}

void AlbumSheetPresenter::refreshState()
{
    if (m_wanted) {
        Q_EMIT changed();
    }
}

QString AlbumSheetPresenter::facts() const
{
    const double seconds = std::accumulate(m_album->tracks.begin(), m_album->tracks.end(), 0.0,
        [](double sum, const Track &track) { return sum + track.info.duration; });
    return AppLocalizer::text(QStringLiteral("Utwory: ") + QString::number(m_album->tracks.size())
        + QStringLiteral(" · ") + durationLabel(seconds) + QStringLiteral(" · ") + byteCount(m_album->bytes()));
}

QString AlbumSheetPresenter::format() const
{
    if (m_album->tracks.empty()) {
        return {};
    }
    const AudioInfo &info = m_album->tracks.front().info;
    return info.codec + QStringLiteral(" · ") + AppLocalizer::text(info.parameters());
}

QString AlbumSheetPresenter::cover() const
{
    return m_artwork && !m_artwork->isEmpty() ? m_covers->nameOf(*m_artwork) : QString();
}

int AlbumSheetPresenter::coverSide() const
{
    return m_coverFacts ? std::max(m_coverFacts->width, m_coverFacts->height) : 0;
}

QString AlbumSheetPresenter::coverFacts() const
{
    return m_coverFacts ? QStringLiteral("%1 × %2 · ").arg(m_coverFacts->width).arg(m_coverFacts->height)
            + m_coverFacts->format + QStringLiteral(" · ") + byteCount(m_artwork->size())
                        : QString();
}

bool AlbumSheetPresenter::queued() const
{
    const QSet<QUuid> &chosen = m_model.chosen(m_onDeviceOverride);
    return std::all_of(
        m_album->tracks.begin(), m_album->tracks.end(), [&](const Track &track) { return chosen.contains(track.id); });
}

bool AlbumSheetPresenter::holdsCurrent() const
{
    const std::optional<Track> &current = m_model.playback().current();
    return current && std::any_of(m_album->tracks.begin(), m_album->tracks.end(), [&](const Track &track) {
        return track.id == current->id;
    });
}

bool AlbumSheetPresenter::playing() const
{
    return m_model.playback().playing() && holdsCurrent();
}

QString AlbumSheetPresenter::status() const
{
    return m_sawWork ? AppLocalizer::text(m_model.status()) : QString();
}

void AlbumSheetPresenter::play()
{
    if (holdsCurrent()) {
        m_model.playback().toggle();
    } else if (!m_album->tracks.empty()) {
        m_model.playback().play(m_album->tracks.front(), m_album->tracks);
    }
}

void AlbumSheetPresenter::reveal() const
{
    if (!m_album->tracks.empty()) {
        Desktop::reveal({m_album->tracks.front().url});
    }
}

void AlbumSheetPresenter::openSource() const
{
    if (m_source.isValid()) {
        Desktop::openAddress(m_source);
    }
}
