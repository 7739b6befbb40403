#include "ui/library/AlbumListModel.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/text/ByteCount.h"

#include <algorithm>
#include <utility>

namespace {

/// Whether two albums of one identity would be shown alike: tracks are compared by their ids, since a track's record
/// does not change but for its artwork.
bool looksTheSame(const Album &a, const Album &b)
{
    const auto sameArtwork = [](const Track &x, const Track &y) {
        return x.artwork.has_value() == y.artwork.has_value()
            && (!x.artwork || x.artwork->constData() == y.artwork->constData());
    };
    return &a == &b
        || (a.title == b.title && a.artist == b.artist
            && std::equal(a.tracks.begin(), a.tracks.end(), b.tracks.begin(), b.tracks.end(),
                [&](const Track &x, const Track &y) { return x.id == y.id && sameArtwork(x, y); }));
}

template <typename Row> std::vector<std::size_t> idsOf(const std::vector<Row> &rows)
{
    std::vector<std::size_t> ids(rows.size());
    std::transform(rows.begin(), rows.end(), ids.begin(), [](const Row &row) { return row.id; });
    return ids;
}

bool holds(const Album &album, const QUuid &track)
{
    return std::any_of(
        album.tracks.begin(), album.tracks.end(), [&track](const Track &other) { return other.id == track; });
}

} // namespace

AlbumListModel::AlbumListModel(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent)
    : MusicListModel(model, MarkedRole, parent)
    , m_covers(std::move(covers))
{
    connect(&model, &MarluneModel::browsingChanged, this, [this] {
        m_isOutdated = true;
        m_listChange.start();
    });
    connect(&model, &MarluneModel::sectionChanged, this, &AlbumListModel::refreshIfShown);
    connect(&model, &MarluneModel::viewModeChanged, this, &AlbumListModel::refreshIfShown);
    m_selectionChange.follow(model, &MarluneModel::selectionChanged);
    for (const auto signal : {&Playback::currentChanged, &Playback::playingChanged}) {
        connect(&model.playback(), signal, this, [this] { renew({PlayingRole}); });
    }
    followSteps();
    refreshIfShown();
}

int AlbumListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> AlbumListModel::roleNames() const
{
    return {{TitleRole, "albumTitle"}, {ArtistRole, "artist"}, {CountAndSizeRole, "countAndSize"},
        {FormatRole, "format"}, {HighResolutionRole, "highResolution"}, {DiscsRole, "discs"}, {ChosenRole, "chosen"},
        {PlayingRole, "playing"}, {CoverRole, "cover"}, {MarkedRole, "marked"}};
}

const AlbumListModel::Row *AlbumListModel::row(int index) const
{
    return index >= 0 && index < int(m_rows.size()) ? &m_rows[std::size_t(index)] : nullptr;
}

QVariant AlbumListModel::data(const QModelIndex &index, int role) const
{
    const Row *shown = index.isValid() ? row(index.row()) : nullptr;
    if (!shown) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return texts(*shown).title;
    case ArtistRole:
        return texts(*shown).artist;
    case CountAndSizeRole:
        return texts(*shown).countAndSize;
    case FormatRole:
        return texts(*shown).format;
    case HighResolutionRole:
        return texts(*shown).highResolution;
    case DiscsRole:
        return texts(*shown).discs;
    case ChosenRole:
        return isChosen(*shown->album);
    case PlayingRole:
        return isPlaying(*shown->album);
    case CoverRole:
        return texts(*shown).cover;
    case MarkedRole:
        return m_selection.contains(index.row());
    default:
        return {};
    }
}

const AlbumListModel::Texts &AlbumListModel::texts(const Row &row) const
{
    if (!row.texts || row.texts->language != AppLocalizer::language()) {
        const Album &album = *row.album;
        Texts made;
        made.language = AppLocalizer::language();
        made.title = Wording::shownName(album.title);
        made.artist = Wording::shownName(Wording::artistText(album.artist));
        made.countAndSize = QString::number(album.tracks.size()) + QStringLiteral(" / ") + byteCount(album.bytes());
        made.format = album.tracks.empty() ? QString() : Wording::shownName(album.tracks.front().info.codec);
        made.highResolution = std::any_of(
            album.tracks.begin(), album.tracks.end(), [](const Track &track) { return isHighResolution(track.info); });
        if (const std::size_t discs = album.discs().size(); discs >= 2) {
            made.discs = AppLocalizer::text(QString::number(discs) + QStringLiteral(" CD · jeden album"));
        }
        if (const std::optional<QByteArray> artwork = album.artworkBytes(); artwork && !artwork->isEmpty()) {
            made.cover = m_covers->nameOf(*artwork);
        }
        row.texts = std::move(made);
    }
    return *row.texts;
}

bool AlbumListModel::isChosen(const Album &album) const
{
    const QSet<QUuid> &ids = chosen();
    return std::all_of(
        album.tracks.begin(), album.tracks.end(), [&](const Track &track) { return ids.contains(track.id); });
}

bool AlbumListModel::isPlaying(const Album &album) const
{
    const Playback &playback = model().playback();
    return playback.playing() && holds(album, playback.current()->id);
}

void AlbumListModel::refreshIfShown()
{
    const bool isShown
        = model().section() == Section::Music && viewModeFromText(model().viewMode()) == ViewMode::Albums;
    if (m_isOutdated && isShown) {
        refresh();
    }
}

void AlbumListModel::refresh()
{
    m_isOutdated = false;
    const std::shared_ptr<const AlbumList> albums = model().albums();
    if (albums != m_albums) {
        replaceRows(rowsFor(*albums));
        m_albums = albums;
        m_covers->prune();
    }
}

std::vector<AlbumListModel::Row> AlbumListModel::rowsFor(const AlbumList &albums) const
{
    const std::vector<std::size_t> ids = idsOf(m_rows);
    const RowChanges::Positions<std::size_t> rowOf(ids);
    std::vector<Row> rows;
    rows.reserve(albums.size());
    for (const std::shared_ptr<const Album> &album : albums) {
        Row row {.id = qHash(album->id()), .album = album, .texts = {}};
        if (const Row *before = this->row(rowOf(row.id)); before && looksTheSame(*album, *before->album)) {
            row.texts = before->texts;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

void AlbumListModel::replaceRows(std::vector<Row> rows)
{
    m_before = {.ids = idsOf(m_rows), .selection = m_selection, .topRow = m_topRow};
    const Order now = order();
    const bool isOtherOrder = std::exchange(m_order, now) != now;
    if (changeInSteps(m_rows, rows, [](const Row &row) { return row.id; })) {
        updateRows(std::move(rows));
        if (isOtherOrder && m_before.ids != idsOf(m_rows)) {
            Q_EMIT placed(0);
        }
    } else {
        exchangeRows(m_rows, std::move(rows));
        follow();
        renew({});
        Q_EMIT placed(topNow(isOtherOrder));
    }
    Q_EMIT selectedChanged();
    Q_EMIT currentRowChanged();
}

/// All rows are new: what was selected and current is so again.
void AlbumListModel::follow()
{
    const std::vector<std::size_t> ids = idsOf(m_rows);
    const RowChanges::Positions<std::size_t> rowOf(ids);
    std::vector<int> newRows(m_before.ids.size());
    std::transform(m_before.ids.begin(), m_before.ids.end(), newRows.begin(), rowOf);
    m_selection = m_before.selection;
    m_selection.remap(newRows, rowCount());
}

/// The first row that was in sight and is still there, but the first of all where the user has asked for other ones or
/// another order.
double AlbumListModel::topNow(bool isOtherOrder) const
{
    const auto top = std::size_t(std::max(0.0, m_before.topRow));
    constexpr std::size_t tries = 100; // each looks through all rows
    for (std::size_t i = top; !isOtherOrder && i < std::min(m_before.ids.size(), top + tries); ++i) {
        const auto found
            = std::find_if(m_rows.begin(), m_rows.end(), [&](const Row &row) { return row.id == m_before.ids[i]; });
        if (found != m_rows.end()) {
            return double(found - m_rows.begin()) + (i == top ? m_before.topRow - double(top) : 0);
        }
    }
    return 0;
}

QString AlbumListModel::landmark(int row) const
{
    const Row *shown = this->row(row);
    if (!shown) {
        return {};
    }
    const Album &album = *shown->album;
    const QString year = album.tracks.empty() ? QString() : album.tracks.front().info.year;
    return landmarkOf({.artist = album.artist, .album = album.title, .year = year, .bytes = album.bytes()});
}

QString AlbumListModel::nameAt(int index) const
{
    const Row *shown = row(index);
    const bool isByArtist = m_order.sortMode == sortModeText(SortMode::Artist);
    return !shown ? QString() : isByArtist ? Wording::artistText(shown->album->artist) : shown->album->title;
}

std::vector<const Track *> AlbumListModel::tracksAbout(int index) const
{
    std::vector<const Track *> tracks;
    for (const int each : about(index)) {
        if (const Row *wanted = row(each)) {
            for (const Track &track : wanted->album->tracks) {
                tracks.push_back(&track);
            }
        }
    }
    return tracks;
}

std::vector<std::filesystem::path> AlbumListModel::filesAbout(int index) const
{
    std::vector<std::filesystem::path> files;
    for (const int each : about(index)) {
        if (const Row *wanted = row(each); wanted && !wanted->album->tracks.empty()) {
            files.push_back(wanted->album->tracks.front().url);
        }
    }
    return files;
}

void AlbumListModel::updateRows(std::vector<Row> rows)
{
    std::vector<Row> before = std::exchange(m_rows, std::move(rows));
    for (int i = 0; i < int(m_rows.size()); ++i) {
        const Row &was = before[std::size_t(i)];
        const Row &is = m_rows[std::size_t(i)];
        if (!looksTheSame(*was.album, *is.album)) {
            Q_EMIT dataChanged(index(i), index(i));
        }
    }
}

void AlbumListModel::play(int index)
{
    const Row *chosen = row(index);
    if (!chosen || chosen->album->tracks.empty()) {
        return;
    }
    Playback &playback = model().playback();
    if (playback.current() && holds(*chosen->album, playback.current()->id)) {
        playback.toggle();
    } else {
        playback.play(chosen->album->tracks.front(), chosen->album->tracks);
    }
}

void AlbumListModel::activate(int index)
{
    if (const Row *chosen = row(index)) {
        model().setOpenAlbum(*chosen->album);
    }
}

void AlbumListModel::chooseCover(int index)
{
    if (const Row *chosen = row(index)) {
        model().chooseArtwork(*chosen->album, false);
    }
}

void AlbumListModel::lookUpCover(int index)
{
    if (const Row *chosen = row(index)) {
        model().setCoverLookup(*chosen->album);
    }
}

void AlbumListModel::toggle(int index)
{
    if (const Row *chosen = row(index)) {
        model().toggle(*chosen->album);
    }
}

void AlbumListModel::forget(int index)
{
    if (const Row *chosen = row(index)) {
        model().forget(*chosen->album);
    }
}
