#include "ui/library/DiscTrackListModel.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <utility>

namespace {

QString trackNumber(const Track &track)
{
    return track.info.trackNumber > 0 ? QStringLiteral("%1").arg(track.info.trackNumber, 2, 10, QChar(u'0'))
                                      : QStringLiteral("—");
}

} // namespace

DiscTrackListModel::DiscTrackListModel(MarluneModel &model, QObject *parent)
    : RowListModel(parent)
    , m_model(model)
    , m_discs(std::make_shared<const std::vector<AlbumDisc>>())
{
    m_states.follow(m_model, &MarluneModel::selectionChanged);
    m_states.follow(m_model.playback(), &Playback::currentChanged, &Playback::playingChanged);
}

int DiscTrackListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> DiscTrackListModel::roleNames() const
{
    return {{HeadingRole, "heading"}, {TitleRole, "trackTitle"}, {NumberRole, "number"}, {ArtistRole, "artist"},
        {DurationRole, "duration"}, {QueuedRole, "queued"}, {PlayingRole, "playing"}};
}

QVariant DiscTrackListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Row &row = m_rows[std::size_t(index.row())];
    if (!row.track && role == HeadingRole) {
        return AppLocalizer::text(QString::number(row.disc->number) + QStringLiteral(" · Utwory: ")
            + QString::number(row.disc->tracks.size()));
    }
    if (!row.track) {
        return role > HeadingRole && role < QueuedRole ? QVariant(QString())
            : role >= QueuedRole                       ? QVariant(false)
                                                       : QVariant();
    }
    switch (role) {
    case HeadingRole:
        return QString();
    case Qt::DisplayRole:
    case TitleRole:
        return Wording::shownName(row.track->title);
    case NumberRole:
        return trackNumber(*row.track);
    case ArtistRole:
        return row.track->artist == m_album->artist ? QString() : Wording::shownName(row.track->artist);
    case DurationRole:
        return durationLabel(row.track->info.duration);
    case QueuedRole:
        return row.queued;
    case PlayingRole:
        return row.playing;
    default:
        return {};
    }
}

void DiscTrackListModel::show(std::shared_ptr<const Album> album, std::optional<bool> onDeviceOverride)
{
    if (album == m_album && onDeviceOverride == m_onDeviceOverride) {
        return;
    }
    const bool artistChanges = !m_album || album->artist != m_album->artist;
    m_album = std::move(album);
    m_onDeviceOverride = onDeviceOverride;
    const auto discs = std::make_shared<const std::vector<AlbumDisc>>(m_album->discs());
    std::vector<Row> rows = rowsOf(*discs);
    const auto before = m_discs; // what stays in place points into these until all rows are exchanged
    const bool inSteps = changeRows(m_rows, rows, [](const Row &row) { return row.id; });
    m_discs = discs;
    if (!inSteps) {
        return;
    }
    const auto looksTheSame = [](const Row &a, const Row &b) {
        return a.track ? a.track->title == b.track->title && a.track->artist == b.track->artist
                && a.track->info.trackNumber == b.track->info.trackNumber
                && a.track->info.duration == b.track->info.duration && a.queued == b.queued && a.playing == b.playing
                       : a.disc->tracks.size() == b.disc->tracks.size();
    };
    const std::vector<Row> shown = std::exchange(m_rows, std::move(rows));
    for (int row = 0; row < int(m_rows.size()); ++row) {
        if (artistChanges || !looksTheSame(shown[std::size_t(row)], m_rows[std::size_t(row)])) {
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
}

std::vector<DiscTrackListModel::Row> DiscTrackListModel::rowsOf(const std::vector<AlbumDisc> &discs) const
{
    std::vector<Row> rows;
    rows.reserve(m_album->tracks.size() + discs.size());
    for (const AlbumDisc &disc : discs) {
        if (discs.size() > 1) {
            rows.push_back({.id = QString::number(disc.number), .disc = &disc, .track = nullptr});
        }
        for (const Track &track : disc.tracks) {
            rows.push_back({.id = Files::text(track.url),
                .disc = &disc,
                .track = &track,
                .queued = isQueued(track),
                .playing = isPlaying(track)});
        }
    }
    return rows;
}

bool DiscTrackListModel::isQueued(const Track &track) const
{
    return m_model.chosen(m_onDeviceOverride).contains(track.id);
}

bool DiscTrackListModel::isPlaying(const Track &track) const
{
    const Playback &playback = m_model.playback();
    return playback.playing() && playback.current()->id == track.id;
}

void DiscTrackListModel::refreshStates()
{
    for (int row = 0; row < int(m_rows.size()); ++row) {
        Row &shown = m_rows[std::size_t(row)];
        if (!shown.track) {
            continue;
        }
        const bool queued = isQueued(*shown.track);
        const bool playing = isPlaying(*shown.track);
        if (queued != shown.queued || playing != shown.playing) {
            shown.queued = queued;
            shown.playing = playing;
            Q_EMIT dataChanged(index(row), index(row), {QueuedRole, PlayingRole});
        }
    }
}

const Track *DiscTrackListModel::track(int row) const
{
    return row >= 0 && row < rowCount() ? m_rows[std::size_t(row)].track : nullptr;
}

int DiscTrackListModel::trackAt(int row, int step) const
{
    row = std::clamp(row, 0, std::max(0, rowCount() - 1));
    for (const int direction : {step, -step}) { // above the first track there can only be its disc's row
        for (int at = row; at >= 0 && at < rowCount(); at += direction) {
            if (track(at)) {
                return at;
            }
        }
    }
    return -1;
}

void DiscTrackListModel::play(int row)
{
    if (const Track *chosen = track(row)) {
        std::vector<Track> queue;
        queue.reserve(m_album->tracks.size());
        for (const AlbumDisc &disc : *m_discs) {
            queue.insert(queue.end(), disc.tracks.begin(), disc.tracks.end());
        }
        m_model.playback().play(*chosen, std::move(queue));
    }
}

void DiscTrackListModel::toggle(int row)
{
    if (const Track *chosen = track(row)) {
        m_model.toggleTrack(*chosen, m_onDeviceOverride);
    }
}

void DiscTrackListModel::reveal(int row) const
{
    if (const Track *chosen = track(row)) {
        Desktop::reveal({chosen->url});
    }
}
