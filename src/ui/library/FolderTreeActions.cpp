// What keys, clicks and menus do with the rows of the outline.
#include "ui/library/FolderTreeModel.h"

#include <algorithm>

QString FolderTreeModel::nameAt(int row) const
{
    const std::optional<Node> shown = node(row);
    return shown && *shown != 0 ? tree()[*shown].name : shown ? name(0) : QString();
}

void FolderTreeModel::setOpen(int row, bool open)
{
    const std::optional<Node> folder = node(row);
    if (!folder || !tree()[*folder].isFolder() || m_shown.folders.isOpen(*folder) == open) {
        return;
    }
    m_shown.folders.setOpen(*folder, open);
    std::vector<Node> &rows = m_shown.rows;
    RowSelection &selection = m_shown.selection;
    const int selectedBefore = selection.count();
    const int currentBefore = selection.current();
    const int first = row + 1;
    if (open) {
        const std::vector<Node> below = m_shown.folders.visibleBelow(*folder);
        beginInsertRows({}, first, row + int(below.size()));
        rows.insert(rows.begin() + first, below.begin(), below.end());
        selection.insertRows(first, int(below.size()));
        endInsertRows();
    } else {
        const auto end = std::lower_bound(rows.begin() + first, rows.end(), tree()[*folder].end);
        const int last = int(end - rows.begin()) - 1;
        beginRemoveRows({}, first, last);
        if (selection.current() >= first && selection.current() <= last) {
            selection.setCurrent(row);
        }
        rows.erase(rows.begin() + first, end);
        selection.removeRows(first, last - row);
        endRemoveRows();
    }
    Q_EMIT dataChanged(index(row), index(row), {OpenRole, StateRole});
    if (selection.count() != selectedBefore) {
        Q_EMIT selectedChanged();
    }
    if (selection.current() != currentBefore) {
        Q_EMIT currentRowChanged();
    }
}

void FolderTreeModel::toggleOpen(int row)
{
    if (const std::optional<Node> folder = node(row); folder && tree()[*folder].isFolder()) {
        setOpen(row, !m_shown.folders.isOpen(*folder));
    }
}

void FolderTreeModel::openBelow(int row)
{
    if (const std::optional<Node> folder = node(row); folder && tree()[*folder].isFolder()) {
        m_shown.folders.setOpenBelow(*folder, true);
        changeRowsTo(m_shown.folders.visible(), places());
    }
}

void FolderTreeModel::goOut(int row)
{
    const std::optional<Node> shown = node(row);
    if (shown && tree()[*shown].isFolder() && m_shown.folders.isOpen(*shown)) {
        setOpen(row, false);
    } else if (shown && *shown != 0) {
        walk(rowOf(tree()[*shown].parent), Qt::NoModifier);
    }
}

void FolderTreeModel::goIn(int row)
{
    const std::optional<Node> shown = node(row);
    if (!shown || !tree()[*shown].isFolder()) {
        return;
    }
    if (m_shown.folders.isOpen(*shown)) {
        walk(row + 1, Qt::NoModifier);
    } else {
        setOpen(row, true);
    }
}

const Track *FolderTreeModel::track(Node file) const
{
    const std::vector<Track> &tracks = model().activeTracks();
    const std::uint32_t place = tree()[file].track;
    const bool isThere = m_isOnDevice == model().libraryOnDevice() && place < tracks.size()
        && tracks[place].id == (*m_shown.identities)[place].id;
    return isThere ? &tracks[place] : nullptr;
}

std::vector<FolderTreeModel::Node> FolderTreeModel::nodesAbout(int row) const
{
    std::vector<Node> result;
    Node past = 0; // the folder taken last
    for (const int each : about(row)) {
        if (const std::optional<Node> shown = node(each); shown && *shown >= past) {
            result.push_back(*shown);
            past = tree()[*shown].end;
        }
    }
    return result;
}

std::vector<const Track *> FolderTreeModel::tracksIn(const std::vector<Node> &nodes) const
{
    std::vector<const Track *> result;
    for (const Node each : nodes) {
        for (const Node file : m_shown.folders.files(each)) {
            if (const Track *known = track(file)) {
                result.push_back(known);
            }
        }
    }
    return result;
}

std::vector<const Track *> FolderTreeModel::tracksAbout(int row) const
{
    return tracksIn(nodesAbout(row));
}

void FolderTreeModel::toggle(int row)
{
    QSet<QUuid> ids;
    if (const std::optional<Node> shown = node(row)) {
        for (const Track *each : tracksIn({*shown})) {
            ids.insert(each->id);
        }
    }
    if (!ids.isEmpty()) {
        model().toggleTracks(ids);
    }
}

std::optional<std::filesystem::path> FolderTreeModel::pathOf(Node node) const
{
    if (node == 0) {
        return m_shown.root;
    }
    Node file = node;
    while (tree()[file].isFolder()) { // the first node in a folder
        ++file;
    }
    const Track *known = track(file);
    if (!known) {
        return std::nullopt;
    }
    std::filesystem::path path = known->url;
    for (int up = tree()[file].depth - tree()[node].depth; up > 0; --up) {
        path = path.parent_path();
    }
    return path;
}

std::vector<std::filesystem::path> FolderTreeModel::filesAbout(int row) const
{
    std::vector<std::filesystem::path> paths;
    for (const Node each : nodesAbout(row)) {
        if (const std::optional<std::filesystem::path> path = pathOf(each)) {
            paths.push_back(*path);
        }
    }
    return paths;
}

std::vector<Track> FolderTreeModel::queueAround(Node file, const std::vector<Node> &files) const
{
    constexpr std::ptrdiff_t longest = queueReach;
    const auto at = std::lower_bound(files.begin(), files.end(), file);
    const auto begin = at - std::min(longest, at - files.begin());
    std::vector<Track> queue;
    std::for_each(begin, at + std::min(longest, files.end() - at), [&](Node each) {
        if (const Track *known = track(each); known && m_shown.folders.isListed(each)) {
            queue.push_back(*known);
        }
    });
    return queue;
}

void FolderTreeModel::play(int row)
{
    const std::optional<Node> shown = node(row);
    if (!shown) {
        return;
    }
    Playback &playback = model().playback();
    const bool isFolder = tree()[*shown].isFolder();
    const std::vector<Node> files = m_shown.folders.files(*shown);
    const bool isLoaded = playback.current() && std::any_of(files.begin(), files.end(), [&](Node file) {
        return (*m_shown.identities)[tree()[file].track].id == playback.current()->id;
    });
    if (isLoaded) {
        playback.toggle();
    } else if (const Track *first = files.empty() ? nullptr : track(files.front())) {
        playback.play(*first, queueAround(files.front(), isFolder ? files : tree().children(tree()[*shown].parent)));
    }
}

void FolderTreeModel::listen(int row)
{
    const std::optional<Node> shown = node(row);
    if (shown && tree()[*shown].isFolder()) {
        toggleOpen(row);
    } else if (shown && *shown != m_playing) {
        play(row);
    }
}

void FolderTreeModel::openAlbum(int row)
{
    const std::optional<Node> shown = node(row);
    const Track *known = shown && !tree()[*shown].isFolder() ? track(*shown) : nullptr;
    if (const std::shared_ptr<const Album> album = known ? model().albumWith(known->id) : nullptr) {
        model().setOpenAlbum(*album);
    }
}

void FolderTreeModel::activate(int row)
{
    toggleOpen(row);
    openAlbum(row);
}
