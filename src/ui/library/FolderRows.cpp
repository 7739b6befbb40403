#include "ui/library/FolderRows.h"

#include <algorithm>

void FolderRows::setTree(std::shared_ptr<const FolderTree> tree, const std::vector<Node> &before)
{
    const std::vector<std::uint8_t> old = std::exchange(m_flags, std::vector<std::uint8_t>(tree->size(), 0));
    m_tree = std::move(tree);
    m_listed.clear();
    m_listedBefore.assign(m_tree->size() + 1, 0);
    m_chosenBefore = m_listedBefore;
    if (before.empty()) {
        for (Node at = 0; (*m_tree)[at].isFolder(); ++at) {
            m_flags[at] = Open;
            if (at + 1 == m_tree->size() || (*m_tree)[at + 1].end != (*m_tree)[at].end) { // not the only one in it
                break;
            }
        }
        return;
    }
    for (Node node = 0; node < m_tree->size(); ++node) {
        if (before[node] < old.size() && (*m_tree)[node].isFolder()) {
            m_flags[node] = old[before[node]];
        }
    }
}

std::vector<std::uint32_t> FolderRows::sums(const std::vector<bool> &tracks, const std::vector<bool> *andThese) const
{
    std::vector<std::uint32_t> result(m_tree->size() + 1, 0);
    for (Node node = 0; node < m_tree->size(); ++node) {
        const std::uint32_t track = (*m_tree)[node].track;
        const bool counts
            = track < tracks.size() && tracks[track] && (!andThese || (track < andThese->size() && (*andThese)[track]));
        result[node + 1] = result[node] + (counts ? 1 : 0);
    }
    return result;
}

void FolderRows::setListed(const std::vector<bool> &tracks, bool isSearch)
{
    m_listed = tracks;
    m_listedBefore = sums(tracks, nullptr);
    if (std::exchange(m_isSearching, isSearch) != isSearch) {
        for (std::uint8_t &flags : m_flags) {
            flags &= Open;
        }
    }
    if (isSearch) {
        openFound();
    }
}

void FolderRows::setChosen(const std::vector<bool> &tracks)
{
    m_chosenBefore = sums(tracks, &m_listed);
}

/// Level by level, as long as the rows stay few, and in any case down to the first one that offers a choice.
void FolderRows::openFound()
{
    constexpr std::size_t fewRows = 2000;
    std::vector<std::size_t> onLevel;
    for (Node node = 0; node < m_tree->size(); ++node) {
        if (isListed(node)) {
            const std::size_t depth = (*m_tree)[node].depth;
            onLevel.resize(std::max(onLevel.size(), depth + 1));
            ++onLevel[depth];
        }
    }
    std::size_t rows = 0;
    std::size_t shown = 0; // levels
    for (bool isChoice = false; shown < onLevel.size(); ++shown) {
        rows += onLevel[shown];
        if (rows > fewRows && isChoice) {
            break;
        }
        isChoice = isChoice || onLevel[shown] > 1;
    }
    for (Node node = 0; node < m_tree->size(); ++node) {
        const bool opens = (*m_tree)[node].isFolder() && std::size_t((*m_tree)[node].depth) + 1 < shown;
        m_flags[node] = std::uint8_t(opens ? m_flags[node] | FoundOpen : m_flags[node] & ~FoundOpen);
    }
}

bool FolderRows::isOpen(Node folder) const
{
    const std::uint8_t flags = m_flags[folder];
    return m_isSearching ? !(flags & ClosedInSearch) && flags != 0 : (flags & Open) != 0;
}

void FolderRows::setOpen(Node folder, bool open)
{
    std::uint8_t &flags = m_flags[folder];
    if (m_isSearching) {
        flags = std::uint8_t((flags & ~(OpenedInSearch | ClosedInSearch)) | (open ? OpenedInSearch : ClosedInSearch));
    } else {
        flags = open ? Open : 0;
    }
}

void FolderRows::setOpenBelow(Node folder, bool open)
{
    for (Node node = folder; node < (*m_tree)[folder].end; ++node) {
        if ((*m_tree)[node].isFolder()) {
            setOpen(node, open);
        }
    }
}

std::uint32_t FolderRows::listedIn(Node node) const
{
    return m_listedBefore[(*m_tree)[node].end] - m_listedBefore[node];
}

FolderRows::Share FolderRows::chosenIn(Node node) const
{
    const std::uint32_t chosen = m_chosenBefore[(*m_tree)[node].end] - m_chosenBefore[node];
    return chosen == 0 ? Share::None : chosen < listedIn(node) ? Share::Some : Share::All;
}

std::vector<FolderRows::Node> FolderRows::files(Node node) const
{
    std::vector<Node> result;
    result.reserve(listedIn(node));
    for (Node each = node; each < (*m_tree)[node].end; ++each) {
        if (!(*m_tree)[each].isFolder() && isListed(each)) {
            result.push_back(each);
        }
    }
    return result;
}

void FolderRows::appendVisible(Node first, Node end, std::vector<Node> &rows) const
{
    for (Node node = first; node < end;) {
        const bool isShown = isListed(node);
        if (isShown) {
            rows.push_back(node);
        }
        const bool goesIn = isShown && (*m_tree)[node].isFolder() && isOpen(node);
        node = goesIn ? node + 1 : (*m_tree)[node].end;
    }
}

std::vector<FolderRows::Node> FolderRows::visible() const
{
    std::vector<Node> rows;
    if (m_tree) {
        appendVisible(0, m_tree->size(), rows);
    }
    return rows;
}

std::vector<FolderRows::Node> FolderRows::visibleBelow(Node folder) const
{
    std::vector<Node> rows;
    appendVisible(folder + 1, (*m_tree)[folder].end, rows);
    return rows;
}

FolderRows::Node FolderRows::nearestVisible(Node node) const
{
    Node nearest = node;
    for (Node at = node;; at = (*m_tree)[at].parent) {
        if (!isListed(at) || (at != node && !isOpen(at))) {
            nearest = at;
        }
        if (at == 0) {
            break;
        }
    }
    // What is hidden by a filter is no row: the folder around it is.
    while (nearest != 0 && !isListed(nearest)) {
        nearest = (*m_tree)[nearest].parent;
    }
    return isListed(nearest) ? nearest : FolderNode::none;
}
