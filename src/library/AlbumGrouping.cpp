#include "library/AlbumGrouping.h"

#include "platform/files/Files.h"
#include "platform/text/TextOrder.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace {

constexpr auto caseless = QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption;

/// Texts are equal when they are canonically equivalent; keys and sets hold this form of them.
QString canonical(const QString &text)
{
    const auto ascii = [](QChar c) { return c.unicode() < 0x80; };
    return std::all_of(text.begin(), text.end(), ascii) ? text : text.normalized(QString::NormalizationForm_C);
}

QString key(const char *kind, const QString &folder)
{
    return QLatin1String(kind) + QChar(u'\0') + folder;
}

QString key(const char *kind, const QString &folder, const QString &artist, const QString &album)
{
    return key(kind, folder) + QChar(u'\0') + artist + QChar(u'\0') + album;
}

/// What the grouping needs to know of one folder; shared by its tracks.
struct Folder {
    QString path;
    QString name;
    QString parentPath;
    QString parentName;
    std::optional<std::int64_t> disc;

    explicit Folder(const std::filesystem::path &folder)
        : path(canonical(Files::text(folder)))
        , name(Files::name(folder))
        , parentPath(canonical(Files::text(folder.parent_path())))
        , parentName(Files::name(folder.parent_path()))
        , disc(AlbumGrouping::folderDisc(name))
    {
    }
};

/// What it needs to know of one text that serves as album or artist.
struct Name {
    QString exact; ///< canonical form
    QString cleaned;
    QString keyed; ///< the cleaned text as it is in a key
    bool namesDisc = false;

    static Name album(const QString &text)
    {
        const QString cleaned = AlbumGrouping::cleanedAlbum(text);
        return {canonical(text), cleaned, canonical(cleaned.toLower()), AlbumGrouping::folderDisc(text).has_value()};
    }
    static Name artist(const QString &text) { return {canonical(text), text, canonical(text.toLower()), false}; }
};

std::int64_t discOf(const Track &track, const Folder &folder)
{
    return folder.disc ? *folder.disc : std::max<std::int64_t>(1, track.info.discNumber);
}

AlbumGrouping::Description describe(const Track &track, const Folder &folder, const Name &artist, const Name &album)
{
    AlbumGrouping::Description result;
    result.artist = track.artist;
    result.disc = discOf(track, folder);
    if (folder.disc) {
        const bool namesFolder = album.exact == canonical(folder.parentName);
        result.key = key("release", folder.parentPath);
        result.title = namesFolder || album.namesDisc ? folder.parentName : album.cleaned;
    } else {
        result.key = key("album", folder.path, artist.keyed, album.keyed);
        result.title = album.cleaned;
    }
    if (result.title.isEmpty()) {
        result.title = folder.disc ? folder.parentName : folder.name;
    }
    return result;
}

/// describe() for a track of the same folder, artist and album as `described`, whose texts it shares.
AlbumGrouping::Description sameRelease(
    const AlbumGrouping::Description &described, const Track &track, const Folder &folder)
{
    AlbumGrouping::Description result = described;
    result.artist = track.artist;
    result.disc = discOf(track, folder);
    return result;
}

/// The tracks with all that is derived from their texts, each distinct text looked at once.
class Catalogue {
public:
    explicit Catalogue(const std::vector<Track> &tracks)
        : m_tracks(tracks)
    {
        m_entries.reserve(tracks.size());
        for (const Track &track : tracks) {
            const Folder &folder = folderOf(track);
            const Name &artist = lookUp(m_artists, track.artist, Name::artist);
            const Name &album = lookUp(m_albums, track.album, Name::album);
            const bool asBefore = !m_entries.empty() && m_entries.back().isFrom(folder, artist, album);
            m_entries.push_back({&folder, &artist, &album,
                asBefore ? sameRelease(m_entries.back().description, track, folder)
                         : ::describe(track, folder, artist, album)});
        }
    }

    struct Entry {
        const Folder *folder;
        const Name *artist;
        const Name *album;
        AlbumGrouping::Description description;

        [[nodiscard]] bool isFrom(const Folder &aFolder, const Name &anArtist, const Name &anAlbum) const
        {
            return folder == &aFolder && artist == &anArtist && album == &anAlbum;
        }
    };

    [[nodiscard]] const Track &track(std::size_t index) const { return m_tracks[index]; }
    [[nodiscard]] const Entry &entry(std::size_t index) const { return m_entries[index]; }
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    void setKey(std::size_t index, const QString &newKey) { m_entries[index].description.key = newKey; }

private:
    const Folder &folderOf(const Track &track)
    {
        const std::string &path = track.url.native();
        const std::string_view parent = std::string_view(path).substr(0, path.find_last_of('/'));
        // Tracks mostly come folder by folder.
        if (!m_lastFolder || parent != m_lastFolderPath) {
            auto found = m_folders.find(std::string(parent));
            if (found == m_folders.end()) {
                auto made = std::make_unique<Folder>(track.url.parent_path());
                found = m_folders.emplace(std::string(parent), std::move(made)).first;
            }
            m_lastFolderPath = found->first;
            m_lastFolder = found->second.get();
        }
        return *m_lastFolder;
    }

    using Names = QHash<QString, std::shared_ptr<const Name>>;
    static const Name &lookUp(Names &names, const QString &text, Name (*make)(const QString &))
    {
        std::shared_ptr<const Name> &name = names[text];
        if (!name) {
            name = std::make_shared<const Name>(make(text));
        }
        return *name;
    }

    const std::vector<Track> &m_tracks;
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::unique_ptr<Folder>> m_folders;
    std::string_view m_lastFolderPath;
    const Folder *m_lastFolder = nullptr;
    Names m_artists;
    Names m_albums;
};

using Indices = std::vector<std::size_t>;

/// Indices of the entries that `keyOf` gives a key, by key, in the order in which keys first come.
template <typename KeyOf> std::vector<Indices> groupsBy(const Catalogue &catalogue, const KeyOf &keyOf)
{
    QHash<QString, std::size_t> positions;
    positions.reserve(qsizetype(catalogue.size()));
    std::vector<Indices> groups;
    QString last;
    std::size_t lastGroup = 0;
    for (std::size_t index = 0; index < catalogue.size(); ++index) {
        const std::optional<QString> text = keyOf(index);
        if (!text) {
            continue;
        }
        if (text->constData() == last.constData() && !groups.empty()) { // neighbours mostly share their key
            groups[lastGroup].push_back(index);
            continue;
        }
        const auto found = positions.constFind(*text);
        last = *text;
        if (found != positions.constEnd()) {
            lastGroup = *found;
            groups[lastGroup].push_back(index);
        } else {
            lastGroup = groups.size();
            positions.insert(*text, lastGroup);
            groups.push_back({index});
        }
    }
    return groups;
}

/// Joins discs in sibling folders that only their tags tell to belong together.
void joinTaggedDiscs(Catalogue &catalogue)
{
    const Catalogue::Entry *previous = nullptr;
    QString previousKey;
    const auto candidate = [&](std::size_t index) -> std::optional<QString> {
        if (catalogue.track(index).info.discNumber <= 0) {
            return std::nullopt;
        }
        const Catalogue::Entry &entry = catalogue.entry(index);
        if (!previous || !previous->isFrom(*entry.folder, *entry.artist, *entry.album)) {
            previous = &entry;
            previousKey = key("tagged", entry.folder->parentPath, entry.artist->keyed, entry.album->keyed);
        }
        return previousKey;
    };
    for (const Indices &group : groupsBy(catalogue, candidate)) {
        const auto differs = [&](const auto &valueOf) {
            return std::any_of(group.begin(), group.end(),
                [&](std::size_t index) { return valueOf(index) != valueOf(group.front()); });
        };
        const bool severalFolders = differs([&](std::size_t i) { return catalogue.entry(i).folder->path; });
        const bool severalDiscs = differs([&](std::size_t i) { return catalogue.track(i).info.discNumber; });
        // All have one parent: it is a piece of the text that made them a group.
        if (severalFolders && severalDiscs) {
            const QString joined = *candidate(group.front());
            for (const std::size_t index : group) {
                catalogue.setKey(index, joined);
            }
        }
    }
}

void sortTracks(const Catalogue &catalogue, Indices &group)
{
    const auto place = [&](std::size_t index) {
        return std::pair(catalogue.entry(index).description.disc, catalogue.track(index).info.trackNumber);
    };
    std::stable_sort(group.begin(), group.end(), [&](std::size_t a, std::size_t b) { return place(a) < place(b); });
    for (auto begin = group.begin(); begin != group.end();) {
        const auto end = std::find_if(begin, group.end(), [&](std::size_t i) { return place(i) != place(*begin); });
        if (end - begin > 1) {
            Indices samePlace(begin, end);
            TextOrder::stableSort(samePlace, [&](std::size_t i) { return Files::name(catalogue.track(i).url); });
            std::copy(samePlace.begin(), samePlace.end(), begin);
        }
        begin = end;
    }
}

AlbumGrouping::Group makeGroup(const Catalogue &catalogue, Indices group)
{
    sortTracks(catalogue, group);
    const Catalogue::Entry &first = catalogue.entry(group.front());
    const auto all = [&](const auto &matches) {
        return std::all_of(group.begin(), group.end(), [&](std::size_t i) { return matches(catalogue.entry(i)); });
    };
    const bool oneArtist
        = all([&](const Catalogue::Entry &entry) { return entry.artist->exact == first.artist->exact; });
    const QString title = canonical(first.description.title);
    const bool oneTitle = all([&](const Catalogue::Entry &entry) {
        return entry.description.title == first.description.title || canonical(entry.description.title) == title;
    });
    return {.artist = oneArtist ? catalogue.track(group.front()).artist : QStringLiteral("Różni wykonawcy"),
        .title = oneTitle ? first.description.title : first.folder->parentName,
        .key = first.description.key,
        .tracks = std::move(group)};
}

[[maybe_unused]] bool idsAreUnique(const std::vector<Track> &tracks)
{
    QSet<QUuid> ids;
    ids.reserve(qsizetype(tracks.size()));
    for (const Track &track : tracks) {
        ids.insert(track.id);
    }
    return std::size_t(ids.size()) == tracks.size();
}

} // namespace

namespace AlbumGrouping {

std::vector<Group> groups(const std::vector<Track> &tracks)
{
    Q_ASSERT(idsAreUnique(tracks));
    Catalogue catalogue(tracks);
    joinTaggedDiscs(catalogue);
    const auto keyOf = [&](std::size_t index) { return std::optional(catalogue.entry(index).description.key); };
    std::vector<Group> result;
    for (Indices &group : groupsBy(catalogue, keyOf)) {
        result.push_back(makeGroup(catalogue, std::move(group)));
    }
    return result;
}

Album album(const Group &group, const std::vector<Track> &tracks)
{
    Album album {.artist = group.artist, .title = group.title, .tracks = {}, .groupID = group.key};
    album.tracks.reserve(group.tracks.size());
    for (const std::size_t index : group.tracks) {
        album.tracks.push_back(tracks[index]);
    }
    return album;
}

std::vector<Album> albums(const std::vector<Track> &tracks)
{
    std::vector<Album> result;
    for (const Group &group : groups(tracks)) {
        result.push_back(album(group, tracks));
    }
    return result;
}

Description describe(const Track &track)
{
    return ::describe(track, Folder(track.url.parent_path()), Name::artist(track.artist), Name::album(track.album));
}

// Both patterns take runs of blanks and digits whole (possessive), and the second leaves the blanks before it to the
// trimming: a tag of a million blanks would otherwise cost a million times a million steps.

std::optional<std::int64_t> folderDisc(const QString &name)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(?:cd|disc|disk|płyta)\s*+[-_. ]*+([0-9]++)(?:\b|[_-]))"), caseless);
    const QChar initial = name.isEmpty() ? QChar() : name.front().toLower();
    if (initial != u'c' && initial != u'd' && initial != u'p') {
        return std::nullopt;
    }
    const QRegularExpressionMatch match = pattern.match(name);
    bool fits = false;
    const qlonglong number = match.hasMatch() ? match.capturedView(1).toLongLong(&fits) : 0;
    return fits ? std::optional<std::int64_t>(number) : std::nullopt;
}

QString cleanedAlbum(const QString &album)
{
    static const QRegularExpression suffix(
        QStringLiteral(
            R"((?:[-–:]\s*+)?(?:[\[(]\s*+)?(?:cd|disc|disk)\s*+[0-9]++(?:\s*+(?:of|/)\s*+[0-9]++)?\s*+[\])]?$)"),
        caseless);
    // The suffix ends in a number, maybe in brackets; most albums need no match to tell that they have none.
    const auto decoration = [](QChar c) { return c.isSpace() || c == u']' || c == u')'; };
    const auto last = std::find_if_not(album.rbegin(), album.rend(), decoration);
    const bool numbered = last != album.rend() && *last >= u'0' && *last <= u'9';
    return (numbered ? QString(album).remove(suffix) : album).trimmed();
}

} // namespace AlbumGrouping
