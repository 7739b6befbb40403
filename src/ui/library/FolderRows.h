// What an outline shows of a tree of folders: which files are listed, which folders are open, what is chosen.
//
// While something is searched for, folders open by themselves so that what was found is seen; what the user opens and
// closes meanwhile holds as long as the search, and the state from before comes back after it. Plain values; every call
// is linear in the nodes at most, which is a few milliseconds for 100,000.
#pragma once

#include "ui/library/FolderNode.h"

#include <memory>

class FolderRows {
public:
    using Node = std::uint32_t;
    enum class Share : std::uint8_t { None, Some, All };

    /// With these nodes' flags taken over from the tree before; `before` is placesIn() that one, empty for none: then
    /// the root is open, with what follows from it without a choice.
    void setTree(std::shared_ptr<const FolderTree> tree, const std::vector<Node> &before);
    [[nodiscard]] const std::shared_ptr<const FolderTree> &tree() const { return m_tree; }

    /// A bit for each track that the tree was built of, and whether they were searched for. Before it nothing is
    /// listed.
    void setListed(const std::vector<bool> &tracks, bool isSearch);
    void setChosen(const std::vector<bool> &tracks);

    [[nodiscard]] bool isOpen(Node folder) const;
    void setOpen(Node folder, bool open);
    /// The same with all folders below it.
    void setOpenBelow(Node folder, bool open);

    [[nodiscard]] std::uint32_t listedIn(Node node) const;
    [[nodiscard]] Share chosenIn(Node node) const;
    [[nodiscard]] bool isListed(Node node) const { return listedIn(node) > 0; }
    /// The listed files at and below the node, in their order.
    [[nodiscard]] std::vector<Node> files(Node node) const;

    /// What is seen, in order: listed nodes below open folders.
    [[nodiscard]] std::vector<Node> visible() const;
    /// What is seen below a folder while it is open.
    [[nodiscard]] std::vector<Node> visibleBelow(Node folder) const;
    /// The node, or the nearest folder around it that is seen; none where nothing is.
    [[nodiscard]] Node nearestVisible(Node node) const;

private:
    enum Flag : std::uint8_t {
        Open = 1,
        FoundOpen = 2, ///< opened by the search itself
        OpenedInSearch = 4,
        ClosedInSearch = 8,
    };

    [[nodiscard]] std::vector<std::uint32_t> sums(
        const std::vector<bool> &tracks, const std::vector<bool> *andThese) const;
    void openFound();
    void appendVisible(Node first, Node end, std::vector<Node> &rows) const;

    std::shared_ptr<const FolderTree> m_tree;
    std::vector<std::uint8_t> m_flags; ///< of each node
    std::vector<bool> m_listed; ///< of each track
    std::vector<std::uint32_t> m_listedBefore; ///< files before each node, and at the end
    std::vector<std::uint32_t> m_chosenBefore; ///< of those listed
    bool m_isSearching = false;
};
