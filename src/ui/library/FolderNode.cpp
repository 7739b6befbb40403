#include "ui/library/FolderNode.h"

#include "platform/files/PathText.h"
#include "platform/text/TextOrder.h"

#include <QHash>

#include <algorithm>
#include <deque>
#include <unordered_map>

namespace {

/// Folders and files in the order in which they are met, each behind its parent.
class Drafts {
public:
    struct Draft {
        std::string_view name;
        std::uint32_t parent = 0;
        std::uint32_t file = FolderNode::none;
    };

    explicit Drafts(std::string prefix)
        : m_prefix(std::move(prefix))
    {
        m_drafts.push_back({});
        m_folders.emplace(std::string_view(), 0);
    }

    void add(std::string_view path, std::uint32_t file)
    {
        const std::string_view shown = relative(path);
        const std::size_t slash = shown.rfind('/');
        const bool isAtTop = slash == std::string_view::npos;
        const std::uint32_t parent = folder(isAtTop ? std::string_view() : shown.substr(0, slash));
        const std::string_view name = isAtTop ? shown : shown.substr(slash + 1);
        m_drafts.push_back({.name = name.empty() ? "/" : name, .parent = parent, .file = file});
    }
    [[nodiscard]] const std::vector<Draft> &all() const { return m_drafts; }

private:
    /// Below the root the path from there, otherwise the full one; without empty components.
    [[nodiscard]] std::string_view relative(std::string_view path)
    {
        const bool isBelow = !m_prefix.empty() && path.size() > m_prefix.size() && path.starts_with(m_prefix);
        const std::string_view rest = isBelow ? path.substr(m_prefix.size()) : path.substr(path.starts_with('/'));
        if (!rest.starts_with('/') && !rest.ends_with('/') && rest.find("//") == std::string_view::npos) {
            return rest;
        }
        std::string &clean = m_cleaned.emplace_back();
        for (const char byte : rest) {
            if (byte != '/' || (!clean.empty() && clean.back() != '/')) {
                clean.push_back(byte);
            }
        }
        if (clean.ends_with('/')) {
            clean.pop_back();
        }
        return clean;
    }

    std::uint32_t folder(std::string_view path)
    {
        if (path == m_lastPath) { // files of one folder mostly follow each other
            return m_last;
        }
        std::uint32_t at = 0;
        const auto known = m_folders.find(path);
        if (known != m_folders.end()) {
            at = known->second;
        } else {
            std::size_t begin = 0;
            for (std::size_t end = 0; end != path.size(); begin = end + 1) {
                end = std::min(path.find('/', begin), path.size());
                const auto [place, isNew] = m_folders.try_emplace(path.substr(0, end), std::uint32_t(m_drafts.size()));
                if (isNew) {
                    m_drafts.push_back({.name = path.substr(begin, end - begin), .parent = at});
                }
                at = place->second;
            }
        }
        m_lastPath = path;
        return m_last = at;
    }

    std::string m_prefix;
    std::vector<Draft> m_drafts;
    std::unordered_map<std::string_view, std::uint32_t> m_folders; ///< by path
    std::deque<std::string> m_cleaned;
    std::string_view m_lastPath;
    std::uint32_t m_last = 0;
};

using Draft = Drafts::Draft;

/// The number that a name begins with, unless it is a long one or goes on in another script.
std::optional<std::uint32_t> leadingNumber(std::string_view name)
{
    constexpr std::size_t mostDigits = 9;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i <= std::min(mostDigits, name.size()); ++i) {
        const char byte = i < name.size() ? name[i] : ' ';
        if (byte < '0' || byte > '9') {
            return i > 0 && static_cast<unsigned char>(byte) < 0x80 ? std::optional(number) : std::nullopt;
        }
        number = number * 10 + std::uint32_t(byte - '0');
    }
    return std::nullopt;
}

/// The drafts of each folder as one span, sorted.
class Levels {
public:
    explicit Levels(const std::vector<Draft> &drafts)
        : m_drafts(drafts)
        , m_begins(drafts.size() + 1)
        , m_children(drafts.size() - 1)
        , m_twins(drafts.size())
    {
        for (std::size_t i = 1; i < drafts.size(); ++i) {
            ++m_begins[drafts[i].parent + 1];
        }
        for (std::size_t i = 1; i < m_begins.size(); ++i) {
            m_begins[i] += m_begins[i - 1];
        }
        std::vector<std::uint32_t> next(m_begins.begin(), m_begins.end() - 1);
        for (std::uint32_t i = 1; i < drafts.size(); ++i) {
            m_children[next[drafts[i].parent]++] = i;
        }
        for (std::uint32_t i = 0; i < drafts.size(); ++i) {
            sort(i);
        }
    }

    [[nodiscard]] std::pair<const std::uint32_t *, const std::uint32_t *> of(std::uint32_t folder) const
    {
        return {m_children.data() + m_begins[folder], m_children.data() + m_begins[folder + 1]};
    }
    [[nodiscard]] std::uint32_t twin(std::uint32_t draft) const { return m_twins[draft]; }

private:
    struct Keyed {
        QCollatorSortKey key;
        std::uint32_t draft;
    };

    using Children = std::vector<std::uint32_t>::iterator;

    void sort(std::uint32_t folder)
    {
        const Children begin = m_children.begin() + m_begins[folder];
        const Children end = m_children.begin() + m_begins[folder + 1];
        if (end - begin > 1 && !sortByNumber(begin, end)) {
            sortByKey(begin, end);
        }
    }

    void sortByKey(Children begin, Children end)
    {
        m_keyed.clear();
        std::transform(begin, end, std::back_inserter(m_keyed), [this](std::uint32_t draft) {
            return Keyed {.key = TextOrder::key(Files::text(m_drafts[draft].name)), .draft = draft};
        });
        const auto before = [](const Keyed &a, const Keyed &b) { return a.key < b.key; };
        std::stable_sort(m_keyed.begin(), m_keyed.end(), before);
        std::transform(m_keyed.begin(), m_keyed.end(), begin, [](const Keyed &keyed) { return keyed.draft; });
        for (std::size_t i = 0; i < m_keyed.size();) {
            std::size_t past = i + 1;
            while (past < m_keyed.size() && !before(m_keyed[i], m_keyed[past])) {
                ++past;
            }
            if (past - i > 1) {
                countTwins(begin + std::ptrdiff_t(i), begin + std::ptrdiff_t(past));
            }
            i = past;
        }
    }

    /// Where each name begins with a number those decide, and only names with the same one need keys: the tracks of
    /// most albums have none.
    bool sortByNumber(Children begin, Children end)
    {
        m_numbered.clear();
        for (Children each = begin; each != end; ++each) {
            const std::optional<std::uint32_t> number = leadingNumber(m_drafts[*each].name);
            if (!number) {
                return false;
            }
            m_numbered.emplace_back(*number, *each);
        }
        std::sort(m_numbered.begin(), m_numbered.end());
        std::transform(
            m_numbered.begin(), m_numbered.end(), begin, [](const auto &numbered) { return numbered.second; });
        for (std::size_t i = 0; i < m_numbered.size();) {
            std::size_t past = i + 1;
            while (past < m_numbered.size() && m_numbered[past].first == m_numbered[i].first) {
                ++past;
            }
            if (past - i > 1) {
                sortByKey(begin + std::ptrdiff_t(i), begin + std::ptrdiff_t(past));
            }
            i = past;
        }
        return true;
    }

    /// Of names that are the same byte for byte, a folder's id is the bare path.
    void countTwins(Children begin, Children end)
    {
        std::unordered_map<std::string_view, std::uint32_t> seen;
        for (auto each = begin; each != end; ++each) {
            seen[m_drafts[*each].name] += m_drafts[*each].file == FolderNode::none ? 1 : 0;
        }
        for (auto each = begin; each != end; ++each) {
            if (m_drafts[*each].file != FolderNode::none) {
                m_twins[*each] = seen[m_drafts[*each].name]++;
            }
        }
    }

    const std::vector<Draft> &m_drafts;
    std::vector<std::uint32_t> m_begins;
    std::vector<std::uint32_t> m_children;
    std::vector<std::uint32_t> m_twins;
    std::vector<Keyed> m_keyed; ///< of one folder; kept for its memory
    std::vector<std::pair<std::uint32_t, std::uint32_t>> m_numbered; ///< the same
};

std::string prefixOf(const std::optional<std::filesystem::path> &root)
{
    std::string prefix = root ? Files::withoutSeparator(*root).native() : std::string();
    return prefix.empty() || prefix == "/" ? std::string() : prefix + '/';
}

} // namespace

void PathList::add(const std::filesystem::path &path)
{
    m_bytes += path.native();
    m_ends.push_back(m_bytes.size());
}

std::string_view PathList::operator[](std::size_t place) const
{
    const std::size_t begin = place == 0 ? 0 : m_ends[place - 1];
    return std::string_view(m_bytes).substr(begin, m_ends[place] - begin);
}

FolderTree::FolderTree(const PathList &files, const std::optional<std::filesystem::path> &root, const QString &rootName)
{
    Drafts found(prefixOf(root));
    for (std::size_t i = 0; i < files.size(); ++i) {
        found.add(files[i], std::uint32_t(i));
    }
    const std::vector<Draft> &drafts = found.all();
    const Levels levels(drafts);

    std::vector<std::uint32_t> sizes(drafts.size(), 1); // each with what is below it
    for (std::size_t i = drafts.size() - 1; i > 0; --i) {
        sizes[drafts[i].parent] += sizes[i];
    }
    m_nodes.resize(drafts.size());
    m_nodes[0].name = rootName;
    m_nodes[0].end = size();
    std::vector<std::uint32_t> places(drafts.size(), 0);
    for (std::uint32_t folder = 0; folder < drafts.size(); ++folder) { // parents come before what is in them
        const std::uint32_t parent = places[folder];
        std::uint32_t place = parent + 1;
        const auto [begin, end] = levels.of(folder);
        std::for_each(begin, end, [&](std::uint32_t child) {
            const Draft &draft = drafts[child];
            places[child] = place;
            m_nodes[place] = {.name = Files::text(draft.name),
                .parent = parent,
                .end = place + sizes[child],
                .track = draft.file,
                .twin = levels.twin(child),
                .depth = std::uint16_t(m_nodes[parent].depth + 1)};
            place += sizes[child];
        });
    }
}

std::vector<std::uint32_t> FolderTree::children(std::uint32_t node) const
{
    std::vector<std::uint32_t> result;
    for (std::uint32_t child = node + 1; child < m_nodes[node].end; child = m_nodes[child].end) {
        result.push_back(child);
    }
    return result;
}

QString FolderTree::id(std::uint32_t node) const
{
    QString result;
    for (std::uint32_t at = node; at != 0; at = m_nodes[at].parent) {
        result = result.isEmpty() ? m_nodes[at].name : m_nodes[at].name + u'/' + result;
    }
    if (const std::uint32_t twin = m_nodes[node].twin; twin > 0) { // no path holds a NUL
        result += QChar(0) + QString::number(twin);
    }
    return result;
}

std::vector<std::uint32_t> FolderTree::placesIn(const FolderTree &other) const
{
    const auto key = [](const FolderNode &node) { return std::pair(node.name, node.isFolder() ? -1 : int(node.twin)); };
    std::vector<std::uint32_t> places(m_nodes.size(), FolderNode::none);
    places[0] = 0;
    for (std::uint32_t folder = 0; folder < size(); ++folder) {
        if (!m_nodes[folder].isFolder() || places[folder] == FolderNode::none) {
            continue;
        }
        std::uint32_t theirs = places[folder] + 1;
        const std::uint32_t theirEnd = other[places[folder]].end;
        std::uint32_t ours = folder + 1;
        for (; ours < m_nodes[folder].end && theirs < theirEnd && key(m_nodes[ours]) == key(other[theirs]);
            ours = m_nodes[ours].end, theirs = other[theirs].end) {
            places[ours] = theirs; // as long as both hold the same
        }
        QHash<std::pair<QString, int>, std::uint32_t> rest;
        for (; ours < m_nodes[folder].end && theirs < theirEnd; theirs = other[theirs].end) {
            rest.insert(key(other[theirs]), theirs);
        }
        for (; !rest.isEmpty() && ours < m_nodes[folder].end; ours = m_nodes[ours].end) {
            places[ours] = rest.value(key(m_nodes[ours]), FolderNode::none);
        }
    }
    return places;
}
