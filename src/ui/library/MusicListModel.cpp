#include "ui/library/MusicListModel.h"

#include "ui/lists/FileDrag.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/text/ByteCount.h"
#include "platform/text/Characters.h"
#include "platform/text/TextOrder.h"

#include <algorithm>

namespace {

QString initial(const QString &name)
{
    const QString first = firstCharacters(name.trimmed(), 1).toUpper();
    return !first.isEmpty() && first.front().isLetter() ? first : QStringLiteral("#");
}

} // namespace

MusicListModel::MusicListModel(MarluneModel &model, int markedRole, QObject *parent)
    : RowListModel(parent)
    , m_model(model)
    , m_markedRole(markedRole)
{
}

void MusicListModel::followSteps()
{
    connect(this, &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex &, int first, int last) { ownSelection().insertRows(first, last - first + 1); });
    connect(this, &QAbstractItemModel::rowsRemoved, this,
        [this](const QModelIndex &, int first, int last) { ownSelection().removeRows(first, last - first + 1); });
}

void MusicListModel::renew(const QList<int> &roles)
{
    if (rowCount() > 0) { // a view asks again for the rows that it shows, and no others
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), roles);
    }
}

template <typename Change> void MusicListModel::select(const Change &change)
{
    const int before = currentRow();
    if (const auto [first, last] = change(ownSelection()); first <= last) {
        Q_EMIT dataChanged(index(first), index(last), {m_markedRole});
        Q_EMIT selectedChanged();
    }
    if (before != currentRow()) {
        Q_EMIT currentRowChanged();
    }
}

void MusicListModel::walk(int row, int modifiers)
{
    m_typeAhead.end();
    const int target = std::clamp(row, 0, std::max(0, rowCount() - 1));
    select([&](RowSelection &selection) { return selection.walk(target, Qt::KeyboardModifiers(modifiers)); });
}

void MusicListModel::press(int row, int modifiers)
{
    m_typeAhead.end();
    const bool isPlain = (Qt::KeyboardModifiers(modifiers) & (Qt::ControlModifier | Qt::ShiftModifier)) == 0;
    if (isPlain && !selection().contains(row)) {
        select([&](RowSelection &selection) { return selection.only(row); });
    }
}

void MusicListModel::click(int row, int modifiers)
{
    select([&](RowSelection &selection) { return selection.click(row, Qt::KeyboardModifiers(modifiers)); });
}

void MusicListModel::makeCurrent(int row)
{
    if (row != currentRow()) {
        ownSelection().setCurrent(row);
        Q_EMIT currentRowChanged();
    }
}

void MusicListModel::toggleMark(int row)
{
    select([&](RowSelection &selection) { return selection.toggle(row); });
}

void MusicListModel::selectAll()
{
    select([](RowSelection &selection) { return selection.all(); });
}

bool MusicListModel::clearSelection()
{
    const bool any = selectedCount() > 0;
    select([](RowSelection &selection) { return selection.clear(); });
    return any;
}

bool MusicListModel::type(const QString &text, int modifiers)
{
    if (!m_typeAhead.takes(text, modifiers)) {
        return false;
    }
    const int found = m_typeAhead.type(text, currentRow(), rowCount(), [this](int row) { return nameAt(row); });
    if (found >= 0) {
        select([&](RowSelection &selection) { return selection.only(found); });
    }
    return true;
}

MusicListModel::Order MusicListModel::order() const
{
    return {.onDevice = m_model.libraryOnDevice(),
        .hiResOnly = m_model.hiResOnly(),
        .search = m_model.search(),
        .format = m_model.formatFilter(),
        .sortMode = m_model.sortMode(),
        .language = int(TextOrder::language())};
}

QString MusicListModel::landmarkOf(const Place &place) const
{
    switch (sortModeFromText(m_model.sortMode())) {
    case SortMode::Artist:
        return initial(Wording::artistText(place.artist));
    case SortMode::Album:
        return initial(place.album);
    case SortMode::Year:
        return place.year.isEmpty() ? QStringLiteral("—") : Wording::fileName(place.year);
    case SortMode::Size:
        return byteCount(place.bytes);
    }
    return {};
}

std::vector<int> MusicListModel::about(int row) const
{
    return selection().contains(row) ? selection().rows() : std::vector<int> {row};
}

bool MusicListModel::isOneOfSeveral(int row) const
{
    return selection().contains(row) && selectedCount() > 1;
}

const QSet<QUuid> &MusicListModel::chosen() const
{
    return m_model.libraryOnDevice() ? m_model.selectedOnDevice() : m_model.queued();
}

QSet<QUuid> MusicListModel::idsAbout(int row) const
{
    QSet<QUuid> ids;
    for (const Track *each : tracksAbout(row)) {
        ids.insert(each->id);
    }
    return ids;
}

void MusicListModel::toggleSelected(int row)
{
    if (const QSet<QUuid> ids = idsAbout(row); !ids.isEmpty()) {
        m_model.toggleTracks(ids);
    }
}

bool MusicListModel::selectedAreChosen(int row) const
{
    const QSet<QUuid> ids = idsAbout(row);
    return !ids.isEmpty() && chosen().contains(ids);
}

std::vector<std::filesystem::path> MusicListModel::filesAbout(int row) const
{
    std::vector<std::filesystem::path> files;
    for (const Track *each : tracksAbout(row)) {
        files.push_back(each->url);
    }
    return files;
}

void MusicListModel::revealSelected(int row) const
{
    if (const std::vector<std::filesystem::path> files = filesAbout(row); !files.empty()) {
        Desktop::reveal(files);
    }
}

void MusicListModel::drag(int row, const QColor &ground, const QColor &ink, const QFont &font)
{
    FileDrag::Load load {.paths = {},
        .tracks = {},
        .onDevice = m_model.libraryOnDevice(),
        .title = {},
        .ground = ground,
        .ink = ink,
        .font = font};
    for (const Track *each : tracksAbout(row)) {
        load.paths.push_back(each->url);
        load.tracks.push_back(each->id);
        load.title = each->title;
    }
    FileDrag::run(*this, std::move(load)); // the row's item may be another row's by the end of it
}
