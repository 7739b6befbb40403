#include "ui/library/AlbumListModel.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/text/ByteCount.h"

#include <algorithm>

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

bool holds(const Album &album, const QUuid &track)
{
    return std::any_of(
        album.tracks.begin(), album.tracks.end(), [&track](const Track &other) { return other.id == track; });
}

} // namespace

AlbumListModel::AlbumListModel(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent)
    : RowListModel(parent)
    , m_model(model)
    , m_covers(std::move(covers))
{
    connect(&m_model, &MarluneModel::browsingChanged, this, [this] {
        m_isOutdated = true;
        m_listChange.start();
    });
    connect(&m_model, &MarluneModel::sectionChanged, this, &AlbumListModel::refreshIfDue);
    m_listChange.follow(m_model, &MarluneModel::busyChanged);
    m_selectionChange.follow(m_model, &MarluneModel::selectionChanged);
    for (const auto signal : {&Playback::currentChanged, &Playback::playingChanged}) {
        connect(&m_model.playback(), signal, this, &AlbumListModel::refreshPlaying);
    }
    refresh();
}

int AlbumListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> AlbumListModel::roleNames() const
{
    return {{TitleRole, "albumTitle"}, {ArtistRole, "artist"}, {CountAndSizeRole, "countAndSize"},
        {FormatRole, "format"}, {HighResolutionRole, "highResolution"}, {DiscsRole, "discs"},
        {SelectedRole, "selected"}, {PlayingRole, "playing"}, {CoverRole, "cover"}};
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
        return shown->album->title;
    case ArtistRole:
        return Wording::artistText(shown->album->artist);
    case CountAndSizeRole:
        return texts(*shown).countAndSize;
    case FormatRole:
        return texts(*shown).format;
    case HighResolutionRole:
        return texts(*shown).highResolution;
    case DiscsRole:
        return texts(*shown).discs;
    case SelectedRole:
        return shown->selected;
    case PlayingRole:
        return shown->playing;
    case CoverRole:
        return texts(*shown).cover;
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
        made.countAndSize = QString::number(album.tracks.size()) + QStringLiteral(" / ") + byteCount(album.bytes());
        made.format = album.tracks.empty() ? QString() : album.tracks.front().info.codec;
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

bool AlbumListModel::isSelected(const Album &album) const
{
    const QSet<QUuid> &chosen = m_model.libraryOnDevice() ? m_model.selectedOnDevice() : m_model.queued();
    return std::all_of(
        album.tracks.begin(), album.tracks.end(), [&](const Track &track) { return chosen.contains(track.id); });
}

bool AlbumListModel::isPlaying(const Album &album) const
{
    const Playback &playback = m_model.playback();
    return playback.playing() && holds(album, playback.current()->id);
}

void AlbumListModel::refreshIfDue()
{
    if (m_isOutdated && (m_model.section() == Section::Music || !m_model.busy())) {
        refresh();
    }
}

void AlbumListModel::refresh()
{
    m_isOutdated = false;
    const std::shared_ptr<const AlbumList> albums = m_model.albums();
    if (albums != m_albums) {
        replaceRows(rowsFor(*albums));
        m_albums = albums;
        m_covers->prune();
    }
    Q_EMIT refreshed();
}

std::vector<AlbumListModel::Row> AlbumListModel::rowsFor(const AlbumList &albums) const
{
    QHash<QString, const Row *> shown;
    shown.reserve(qsizetype(m_rows.size()));
    for (const Row &row : m_rows) {
        shown.insert(row.id, &row);
    }
    std::vector<Row> rows;
    rows.reserve(albums.size());
    for (const std::shared_ptr<const Album> &album : albums) {
        Row row {.id = album->id(),
            .album = album,
            .selected = isSelected(*album),
            .playing = isPlaying(*album),
            .texts = {}};
        if (const Row *before = shown.value(row.id); before && looksTheSame(*album, *before->album)) {
            row.texts = before->texts;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

void AlbumListModel::replaceRows(std::vector<Row> rows)
{
    if (changeRows(m_rows, rows, [](const Row &row) { return row.id; })) {
        updateRows(std::move(rows));
    }
}

void AlbumListModel::updateRows(std::vector<Row> rows)
{
    std::vector<Row> before = std::exchange(m_rows, std::move(rows));
    for (int i = 0; i < int(m_rows.size()); ++i) {
        const Row &was = before[std::size_t(i)];
        const Row &is = m_rows[std::size_t(i)];
        if (was.selected != is.selected || was.playing != is.playing || !looksTheSame(*was.album, *is.album)) {
            Q_EMIT dataChanged(index(i), index(i));
        }
    }
}

void AlbumListModel::refreshSelection()
{
    refreshRows(&Row::selected, &AlbumListModel::isSelected, SelectedRole);
}

void AlbumListModel::refreshPlaying()
{
    refreshRows(&Row::playing, &AlbumListModel::isPlaying, PlayingRole);
}

/// Brings one state of all rows up to date.
void AlbumListModel::refreshRows(bool Row::*state, bool (AlbumListModel::*now)(const Album &) const, Role role)
{
    int first = -1;
    for (int i = 0; i <= int(m_rows.size()); ++i) {
        Row *row = i < int(m_rows.size()) ? &m_rows[std::size_t(i)] : nullptr;
        if (row && (this->*now)(*row->album) != row->*state) {
            row->*state = !(row->*state);
            first = first < 0 ? i : first;
        } else if (first >= 0) {
            Q_EMIT dataChanged(index(first), index(i - 1), {role});
            first = -1;
        }
    }
}

void AlbumListModel::play(int index)
{
    const Row *chosen = row(index);
    if (!chosen || chosen->album->tracks.empty()) {
        return;
    }
    Playback &playback = m_model.playback();
    if (playback.current() && holds(*chosen->album, playback.current()->id)) {
        playback.toggle();
    } else {
        playback.play(chosen->album->tracks.front(), chosen->album->tracks);
    }
}

void AlbumListModel::open(int index)
{
    if (const Row *chosen = row(index)) {
        m_model.setOpenAlbum(*chosen->album);
    }
}

void AlbumListModel::chooseCover(int index)
{
    if (const Row *chosen = row(index)) {
        m_model.chooseArtwork(*chosen->album, false);
    }
}

void AlbumListModel::lookUpCover(int index)
{
    if (const Row *chosen = row(index)) {
        m_model.setCoverLookup(*chosen->album);
    }
}

void AlbumListModel::toggle(int index)
{
    if (const Row *chosen = row(index)) {
        m_model.toggle(*chosen->album);
    }
}

void AlbumListModel::forget(int index)
{
    if (const Row *chosen = row(index)) {
        m_model.forget(*chosen->album);
    }
}

void AlbumListModel::reveal(int index) const
{
    if (const Row *chosen = row(index); chosen && !chosen->album->tracks.empty()) {
        Desktop::reveal({chosen->album->tracks.front().url});
    }
}
