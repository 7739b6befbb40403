// The search for files that are identical byte for byte.
#include "quality/CollectionQuality.h"

#include "storage/Digest.h"

#include "platform/files/Files.h"
#include "platform/text/ByteCount.h"

#include <sys/stat.h>

#include <map>
#include <set>
#include <string>
#include <utility>

namespace {

using Group = std::vector<const Track *>;

/// Groups the tracks by a key, in the order in which keys first come, and keeps the groups of more than one.
template <typename Key> class Groups {
public:
    void add(const Key &key, const Track &track)
    {
        const auto [place, isNew] = m_places.emplace(key, m_groups.size());
        if (isNew) {
            m_groups.emplace_back();
        }
        m_groups[place->second].push_back(&track);
    }
    [[nodiscard]] std::vector<Group> several() &&
    {
        std::erase_if(m_groups, [](const Group &group) { return group.size() < 2; });
        return std::move(m_groups);
    }

private:
    std::map<Key, std::size_t> m_places;
    std::vector<Group> m_groups;
};

/// Only files of one size can be identical; none of the others is opened.
Group candidates(const std::vector<Track> &tracks)
{
    Groups<std::int64_t> bySize;
    for (const Track &track : tracks) {
        if (track.bytes > 0) {
            bySize.add(track.bytes, track);
        }
    }
    Group result;
    for (const Group &group : std::move(bySize).several()) {
        result.insert(result.end(), group.begin(), group.end());
    }
    return result;
}

/// The files of one run, whatever names they have.
class SeenFiles {
public:
    /// Whether the file that `path` leads to is new to this run.
    [[nodiscard]] bool add(const std::filesystem::path &path)
    {
        if (!m_paths.insert(Files::standardized(path).native()).second) {
            return false;
        }
        struct stat status {};
        // Some drivers of foreign file systems give no inode numbers; there the path alone counts. A file that cannot
        // be asked counts as new: whoever reads it learns why.
        return ::stat(path.c_str(), &status) != 0 || status.st_ino == 0
            || m_files.emplace(status.st_dev, status.st_ino).second;
    }

private:
    std::set<std::string> m_paths;
    std::set<std::pair<dev_t, ino_t>> m_files;
};

/// Bytes; the file can have changed since it was listed.
std::int64_t presentSize(const Track &track)
{
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(track.url, failure);
    return failure ? track.bytes : std::int64_t(size);
}

QualityIssue issueOf(const Group &identical)
{
    const Track &first = *identical.front();
    const auto copies = std::int64_t(identical.size()) - 1;
    QualityIssue issue {.kind = QualityKind::Duplicates,
        .title = QString::number(identical.size()) + QStringLiteral(" identyczne pliki · ") + first.title,
        .detail = QStringLiteral("Zgodne bajt w bajt (SHA-256). Zajętość dodatkowych kopii: ")
            + byteCount(presentSize(first) * copies) + u'.',
        .tracks = {}};
    for (const Track *track : identical) {
        issue.tracks.push_back(*track);
    }
    return issue;
}

} // namespace

namespace CollectionQuality {

Duplicates duplicates(const std::vector<Track> &tracks, const DuplicateProgress &progress, const std::stop_token &stop)
{
    const Group files = candidates(tracks);
    SeenFiles seen;
    Groups<Sha256::Digest> byContent;
    Duplicates found {.groups = {}, .compared = 0, .candidates = int(files.size())};
    for (const Track *track : files) {
        if (stop.stop_requested()) {
            break;
        }
        if (seen.add(track->url)) {
            byContent.add(Storage::digest(track->url), *track);
        }
        progress(++found.compared, found.candidates);
    }
    for (const Group &identical : std::move(byContent).several()) {
        if (presentSize(*identical.front()) > 0) {
            found.groups.push_back(issueOf(identical));
        }
    }
    sortIssues(found.groups);
    return found;
}

} // namespace CollectionQuality
