// The folders that files lie in, as one tree.
//
// Plain values. A tree never changes once it is built, so any thread may read it: one is built in a job while another
// is shown. Its nodes lie in the order in which an outline shows them, each folder right before what is in it, so that
// what lies below a folder is one span of them. Names are bytes and are kept as such: see Files::text().
#pragma once

#include <QString>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A folder or a file. Nodes are named by their places in the tree; the root is 0.
struct FolderNode {
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    QString name; ///< lossless text, fit for no display yet
    std::uint32_t parent = 0; ///< the root's is itself
    std::uint32_t end = 0; ///< the node behind the last one below it
    std::uint32_t track = none; ///< a file's place in the list that the tree was built of
    std::uint32_t twin = 0; ///< above 0: others of that name lie in the folder, a folder or so many files
    std::uint16_t depth = 0;

    [[nodiscard]] bool isFolder() const { return track == none; }
};

/// Paths one behind the other: 100,000 of them are copied in a few milliseconds.
class PathList {
public:
    void add(const std::filesystem::path &path);
    [[nodiscard]] std::size_t size() const { return m_ends.size(); }
    [[nodiscard]] std::string_view operator[](std::size_t place) const;

private:
    std::string m_bytes;
    std::vector<std::size_t> m_ends;
};

class FolderTree {
public:
    /// The tree of these files. Files below `root` are shown by their path from there, others by their full one. Each
    /// folder's content is in the order of names of a file manager, and where that makes no difference, in the order of
    /// the files. 100,000 files take some tenths of a second.
    FolderTree(const PathList &files, const std::optional<std::filesystem::path> &root, const QString &rootName);

    [[nodiscard]] std::uint32_t size() const { return std::uint32_t(m_nodes.size()); }
    [[nodiscard]] const FolderNode &operator[](std::uint32_t node) const { return m_nodes[node]; }
    /// In their order; none of a file.
    [[nodiscard]] std::vector<std::uint32_t> children(std::uint32_t node) const;
    /// The node's path within the tree, which no other has: empty for the root.
    [[nodiscard]] QString id(std::uint32_t node) const;
    /// For each node that one of `other` with the same id, or none.
    [[nodiscard]] std::vector<std::uint32_t> placesIn(const FolderTree &other) const;

private:
    std::vector<FolderNode> m_nodes;
};
