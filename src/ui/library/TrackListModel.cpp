#include "ui/library/TrackListModel.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include <algorithm>
#include <utility>

namespace {

QString numberText(std::int64_t number)
{
    return number > 0 ? QStringLiteral("%1 ").arg(number, 2, 10, QChar(u'0')) : QString();
}

template <typename Row> bool listsTheSame(const std::vector<Row> &a, const std::vector<Row> &b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](const Row &x, const Row &y) { return x.file == y.file; });
}

QString timeText(double seconds)
{
    constexpr qsizetype longest = 9; // "999:59:59"; a damaged file's is of no use
    const QString text = durationLabel(seconds);
    return text.size() > longest ? QStringLiteral("—") : text;
}

} // namespace

TrackListModel::TrackListModel(MarluneModel &model, QObject *parent)
    : MusicListModel(model, MarkedRole, parent)
{
    connect(&model, &MarluneModel::browsingChanged, this, [this] {
        m_isOutdated = true;
        m_listChange.start();
    });
    connect(&model, &MarluneModel::sectionChanged, this, &TrackListModel::refreshIfShown);
    connect(&model, &MarluneModel::viewModeChanged, this, &TrackListModel::refreshIfShown);
    m_selectionChange.follow(model, &MarluneModel::selectionChanged);
    for (const auto signal : {&Playback::currentChanged, &Playback::playingChanged}) {
        connect(&model.playback(), signal, this, [this] { renew({PlayingRole}); });
    }
    followSteps();
    refreshIfShown();
}

int TrackListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> TrackListModel::roleNames() const
{
    return {{NumberRole, "number"}, {TitleRole, "title"}, {ArtistRole, "artist"}, {TimeRole, "time"},
        {FormatRole, "format"}, {ParametersRole, "parameters"}, {HighResolutionRole, "highResolution"},
        {ChosenRole, "chosen"}, {PlayingRole, "playing"}, {MarkedRole, "marked"}};
}

const TrackListModel::Row *TrackListModel::row(int index) const
{
    return index >= 0 && index < int(m_rows.size()) ? &m_rows[std::size_t(index)] : nullptr;
}

const Track *TrackListModel::track(int index) const
{
    const Row *wanted = row(index);
    const std::vector<Track> &tracks = model().activeTracks();
    const bool isThere = wanted && wanted->place < tracks.size() && tracks[wanted->place].id == wanted->id;
    return isThere ? &tracks[wanted->place] : nullptr;
}

QVariant TrackListModel::data(const QModelIndex &index, int role) const
{
    const Row *shown = index.isValid() ? row(index.row()) : nullptr;
    if (!shown) {
        return {};
    }
    switch (role) {
    case ChosenRole:
        return chosen().contains(shown->id);
    case PlayingRole:
        return isPlaying(*shown);
    case MarkedRole:
        return m_selection.contains(index.row());
    case HighResolutionRole: {
        const Track *known = track(index.row());
        return known && isHighResolution(known->info);
    }
    case Qt::DisplayRole:
    case NumberRole:
    case TitleRole:
    case ArtistRole:
    case TimeRole:
    case FormatRole:
    case ParametersRole: {
        const Track *known = track(index.row());
        return known ? text(*known, role) : QString();
    }
    default:
        return {};
    }
}

QString TrackListModel::text(const Track &track, int role) const
{
    switch (role) {
    case NumberRole:
        return numberText(track.info.trackNumber);
    case ArtistRole:
        return Wording::shownName(Wording::artistText(track.artist));
    case TimeRole:
        return timeText(track.info.duration);
    case FormatRole:
        return Wording::shownName(track.info.codec);
    case ParametersRole:
        return AppLocalizer::text(track.info.parameters());
    default:
        return Wording::shownName(track.title);
    }
}

bool TrackListModel::isPlaying(const Row &row) const
{
    const Playback &playback = model().playback();
    return playback.playing() && playback.current()->id == row.id;
}

void TrackListModel::refreshIfShown()
{
    const bool isShown
        = model().section() == Section::Music && viewModeFromText(model().viewMode()) == ViewMode::Tracks;
    if (m_isOutdated && isShown) {
        refresh();
    }
}

std::vector<TrackListModel::Row> TrackListModel::freshRows() const
{
    const std::shared_ptr<const TrackPlaces> places = model().filteredTracks();
    const std::shared_ptr<const TrackIdentities> identities = model().index()->identities();
    std::vector<Row> rows;
    rows.reserve(places->size());
    for (const std::uint32_t place : *places) {
        const TrackIdentity &track = (*identities)[place];
        rows.push_back({.id = track.id, .file = track.file, .place = place});
    }
    return rows;
}

void TrackListModel::refresh()
{
    m_isOutdated = false;
    std::vector<Row> rows = freshRows();
    const Order now = order();
    const bool isSortedAnew
        = now.sortMode != m_order.sortMode || now.language != m_order.language || now.onDevice != m_order.onDevice;
    const bool wasOnDevice = m_order.onDevice;
    const bool isOtherOrder = std::exchange(m_order, now) != now;
    if (rows.empty() && !m_rows.empty() && model().activeTracks().empty()) {
        m_gone = {.rows = m_rows, .selection = m_selection, .topRow = m_topRow, .onDevice = wasOnDevice};
    }
    const Listed before {.rows = m_rows, .selection = m_selection, .topRow = m_topRow, .onDevice = wasOnDevice};
    // In another order no steps need be looked for, which would take longer than all else here.
    const bool inSteps = !isSortedAnew && changeInSteps(m_rows, rows, [](const Row &row) { return row.file; });
    if (!inSteps) {
        exchangeRows(m_rows, std::move(rows));
        follow(before);
        renew({});
    } else {
        const std::vector<Row> stale = std::exchange(m_rows, std::move(rows));
        const auto isSame = [](const Row &a, const Row &b) { return a.id == b.id && a.place == b.place; };
        const auto first = std::mismatch(stale.begin(), stale.end(), m_rows.begin(), isSame).first;
        const auto last
            = std::mismatch(stale.rbegin(), std::make_reverse_iterator(first), m_rows.rbegin(), isSame).first;
        if (first != stale.end()) {
            Q_EMIT dataChanged(index(int(first - stale.begin())), index(int(stale.rend() - last) - 1));
        }
    }
    if (!m_rows.empty() && !m_gone.rows.empty() && m_gone.onDevice == now.onDevice) {
        const Listed gone = std::exchange(m_gone, {});
        follow(gone);
        renew({MarkedRole});
        Q_EMIT placed(topAfter(gone, false));
    } else if (!inSteps || (isOtherOrder && !listsTheSame(before.rows, m_rows))) {
        Q_EMIT placed(topAfter(before, isOtherOrder));
    }
    Q_EMIT selectedChanged();
    Q_EMIT currentRowChanged();
}

void TrackListModel::follow(const Listed &before)
{
    m_selection = before.selection;
    if (m_selection.count() == 0 && m_selection.current() < 0) {
        m_selection.reset(int(m_rows.size()));
        return;
    }
    std::vector<std::size_t> files(m_rows.size());
    std::transform(m_rows.begin(), m_rows.end(), files.begin(), [](const Row &row) { return row.file; });
    const RowChanges::Positions<std::size_t> rowOf(files);
    std::vector<int> newRows(before.rows.size());
    std::transform(
        before.rows.begin(), before.rows.end(), newRows.begin(), [&rowOf](const Row &row) { return rowOf(row.file); });
    m_selection.remap(newRows, int(m_rows.size()));
}

/// The selected row that was in sight stays where it was; otherwise the rows at the top stay there, unless the user has
/// asked for other ones or another order.
double TrackListModel::topAfter(const Listed &before, bool isOtherOrder) const
{
    const auto placeOf = [this](const Row &row) {
        const auto found
            = std::find_if(m_rows.begin(), m_rows.end(), [&row](const Row &other) { return other.file == row.file; });
        return found == m_rows.end() ? -1 : int(found - m_rows.begin());
    };
    const int current = before.selection.current();
    const double above = current - before.topRow;
    if (before.selection.contains(current) && above >= 0 && above < m_rowsInView) {
        if (const int now = placeOf(before.rows[std::size_t(current)]); now >= 0) {
            return std::max(0.0, now - above);
        }
    }
    const auto top = std::size_t(std::max(0.0, before.topRow));
    constexpr std::size_t tries = 100; // each looks through all rows
    for (std::size_t i = top; !isOtherOrder && i < std::min(before.rows.size(), top + tries); ++i) {
        if (const int now = placeOf(before.rows[i]); now >= 0) {
            return now + (i == top ? before.topRow - double(top) : 0);
        }
    }
    return 0;
}

QString TrackListModel::landmark(int row) const
{
    const Track *known = track(row);
    return known
        ? landmarkOf({.artist = known->artist, .album = known->album, .year = known->info.year, .bytes = known->bytes})
        : QString();
}

QString TrackListModel::nameAt(int row) const
{
    const Track *known = track(row);
    return known ? known->title : QString();
}

void TrackListModel::setView(double topRow, double rowsInView)
{
    m_topRow = topRow;
    m_rowsInView = rowsInView;
}

std::vector<const Track *> TrackListModel::tracksAbout(int row) const
{
    std::vector<const Track *> tracks;
    for (const int each : about(row)) {
        if (const Track *known = track(each)) {
            tracks.push_back(known);
        }
    }
    return tracks;
}

void TrackListModel::toggle(int row)
{
    if (const Track *known = track(row)) {
        model().toggleTrack(*known);
    }
}

void TrackListModel::play(int row)
{
    const Track *chosen = track(row);
    if (!chosen) {
        return;
    }
    Playback &playback = model().playback();
    if (playback.current() && playback.current()->id == chosen->id) {
        playback.toggle();
        return;
    }
    std::vector<Track> queue;
    for (int each = std::max(0, row - queueReach); each < std::min(rowCount(), row + queueReach); ++each) {
        if (const Track *known = track(each)) {
            queue.push_back(*known);
        }
    }
    playback.play(*chosen, std::move(queue));
}

void TrackListModel::listen(int row)
{
    if (const Row *wanted = this->row(row); wanted && !isPlaying(*wanted)) {
        play(row);
    }
}

void TrackListModel::activate(int row)
{
    const Track *known = track(row);
    if (const std::shared_ptr<const Album> album = known ? model().albumWith(known->id) : nullptr) {
        model().setOpenAlbum(*album);
    }
}
