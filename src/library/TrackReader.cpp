#include "library/TrackReader.h"

#include "library/AlbumGrouping.h"
#include "library/FileOrder.h"

#include "platform/files/Files.h"
#include "platform/files/FolderItems.h"
#include "platform/files/RegularFile.h"
#include "platform/tasks/Parallel.h"

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <mutex>
#include <string_view>

namespace {

constexpr std::array folderCovers {"cover.jpeg", "cover.jpg", "cover.bmp", "folder.jpg", "cover.png", "folder.png"};
const std::array pictureExtensions {
    QStringLiteral("jpeg"), QStringLiteral("jpg"), QStringLiteral("bmp"), QStringLiteral("png")};
constexpr std::int64_t folderCoverLimit = 10'000'000; // bytes; one that is as large is not read
constexpr std::int64_t chosenCoverLimit = 100'000'000; // bytes; only keeps a mistaken file out of memory

/// An empty tag says as little as a missing one.
std::optional<QString> tag(const AudioInfo &info, const char *key)
{
    const QString value = info.tags.value(QLatin1String(key));
    return value.isEmpty() ? std::nullopt : std::optional(value);
}

std::int64_t leadingNumber(const QString &fileName)
{
    const auto end = std::find_if_not(fileName.begin(), fileName.end(), [](QChar c) { return c.isNumber(); });
    bool fits = false;
    const qlonglong number = QStringView(fileName.begin(), end).toLongLong(&fits);
    return fits ? number : 0;
}

/// A run of files of one folder, which one reader reads.
struct Portion {
    std::size_t begin = 0;
    std::size_t end = 0;
};

std::string_view folderPart(const AudioFile &file)
{
    const std::string_view path = file.path.native();
    return path.substr(0, path.rfind('/') + 1);
}

std::vector<Portion> portionsOf(const std::vector<AudioFile> &files)
{
    constexpr std::size_t largest = 64; // files: several readers share a large folder
    std::vector<Portion> portions;
    for (std::size_t file = 0; file < files.size(); ++file) {
        const bool isMore = file > 0 && folderPart(files[file]) == folderPart(files[file - 1])
            && file - portions.back().begin < largest;
        if (!isMore) {
            portions.push_back({file, file});
        }
        portions.back().end = file + 1;
    }
    return portions;
}

/// A path that is plain already needs no work; one that becomes another, which is returned, may lead to another file.
bool standardize(AudioFile &file)
{
    const std::string &path = file.path.native();
    const bool isPlain = path.starts_with('/') && path.find("/.") == std::string::npos
        && path.find("//") == std::string::npos && !path.ends_with('/');
    if (!isPlain) {
        std::filesystem::path plain = Files::standardized(file.path);
        if (plain.native() != path) {
            file = {std::move(plain), {}};
            return true;
        }
    }
    return false;
}

} // namespace

QString overrideKey(const QString &artist, const QString &album, const std::filesystem::path &folder)
{
    return artist + QChar(u'\0') + album + QChar(u'\0') + Files::text(folder);
}

TrackReader::TrackReader(const QMap<QString, QString> &overrides, ArtworkPool &pool, ReadingCache *cache)
    : m_overrides(overrides)
    , m_pool(pool)
{
    if (cache) {
        m_remembered.emplace(*cache);
    }
}

/// A random one (RFC 4122, 4.4). The processor's own numbers, which QUuid takes, come at a microsecond each.
QUuid TrackReader::newId()
{
    std::array<quint32, 4> words {};
    m_random.fillRange(words.data(), qsizetype(words.size()));
    QUuid id = std::bit_cast<QUuid>(words);
    id.data3 = ushort((id.data3 & 0x0FFFU) | 0x4000U); // version 4
    id.data4[0] = uchar((id.data4[0] & 0x3FU) | 0x80U); // the variant of the standard
    return id;
}

FileFacts TrackReader::factsOf(const AudioFile &file)
{
    if (!m_remembered || !file.stamp) {
        return FileFacts::read(file.path);
    }
    const std::string name = file.path.filename().native();
    if (std::optional<FileFacts> known = m_remembered->find(name, *file.stamp)) {
        return *std::move(known);
    }
    const std::uint64_t before = RegularFile::refusals();
    FileFacts facts = FileFacts::read(file.path);
    if (facts.picture) {
        facts.picture = m_pool.shared(*facts.picture);
    }
    if (RegularFile::refusals() == before) {
        m_remembered->remember(name, *file.stamp, facts);
    }
    return facts;
}

std::optional<QByteArray> TrackReader::readPicture(const std::filesystem::path &file, std::int64_t limit)
{
    const std::optional<FileStamp> stamp = m_remembered ? FileStamp::of(file) : std::nullopt;
    const std::string name = file.filename().native();
    if (stamp && stamp->size < limit) {
        if (std::optional<FileFacts> known = m_remembered->find(name, *stamp)) {
            return std::move(known->picture);
        }
    }
    std::optional<QByteArray> bytes = Files::readBelow(file, limit);
    if (bytes) {
        bytes = m_pool.shared(*bytes);
    }
    if (bytes && stamp) {
        m_remembered->remember(name, *stamp, {.info = {}, .picture = bytes});
    }
    return bytes;
}

/// The first that can be read of the folder's items of this name.
std::optional<QByteArray> TrackReader::readNamed(const std::filesystem::path &name, std::int64_t limit)
{
    for (const std::filesystem::path &file : m_folder.pictures.named(name)) {
        if (std::optional<QByteArray> bytes = readPicture(file, limit)) {
            return bytes;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> TrackReader::readSidecar(const std::filesystem::path &file)
{
    if (m_folder.pictures.isEmpty()) {
        return std::nullopt;
    }
    for (const char *extension : {".jpeg", ".jpg"}) {
        const std::filesystem::path name = file.filename().replace_extension(extension);
        if (std::optional<QByteArray> bytes = readNamed(name, chosenCoverLimit)) {
            return bytes;
        }
    }
    return std::nullopt;
}

Track TrackReader::read(AudioFile found)
{
    if (!found.stamp) {
        found.stamp = FileStamp::of(found.path);
    }
    const std::filesystem::path &file = found.path;
    const Folder &folder = folderOf(file);
    FileFacts facts = factsOf(found);
    Track track;
    track.id = newId();
    track.bytes = found.stamp ? found.stamp->size : Files::size(file).value_or(0);
    track.info = std::move(facts.info);
    const std::optional<QByteArray> embedded
        = facts.picture ? std::optional(m_pool.shared(*facts.picture)) : std::nullopt;
    if (facts.hasFlacPicture) {
        track.info.picture = embedded;
    }

    track.title = tag(track.info, "TITLE").value_or(Files::baseName(file));
    track.artist = tag(track.info, "ALBUMARTIST").value_or(tag(track.info, "ARTIST").value_or(folder.artist));
    track.album = tag(track.info, "ALBUM").value_or(folder.name);
    if (track.info.trackNumber == 0) {
        track.info.trackNumber = leadingNumber(Files::name(file));
    }
    track.hasEmbeddedArt = embedded.has_value();
    track.artwork = chooseArtwork(file, track, embedded);
    track.url = std::move(found.path);
    return track;
}

TrackReader::Folder &TrackReader::folderOf(const std::filesystem::path &file)
{
    const std::string_view path = file.native();
    if (path.substr(0, path.rfind('/')) != m_folder.path.native()) {
        const std::filesystem::path folder = file.parent_path();
        const QString name = Files::name(folder);
        const std::filesystem::path above = folder.parent_path();
        const std::filesystem::path artist = AlbumGrouping::folderDisc(name) ? above.parent_path() : above;
        m_folder = {.path = folder,
            .name = name,
            .artist = Files::name(artist),
            .pictures = CaselessFolder(folder, pictureNames(folder)),
            .coverLooked = false,
            .cover = {}};
    }
    return m_folder;
}

/// The names of the folder's files that can be covers.
std::vector<std::string> TrackReader::pictureNames(const std::filesystem::path &folder)
{
    if (m_remembered) {
        m_remembered->enter(folder);
        if (std::optional<std::vector<std::string>> known = m_remembered->pictures()) {
            return *std::move(known);
        }
    }
    std::vector<std::string> names;
    for (const Files::FolderItem &item : Files::readableItemsOf(folder)) {
        const QString extension = Files::extension(item.name).toCaseFolded();
        if (std::ranges::find(pictureExtensions, extension) != pictureExtensions.end()) {
            names.push_back(item.name);
        }
    }
    if (m_remembered) {
        m_remembered->rememberPictures(names);
    }
    return names;
}

std::optional<QByteArray> TrackReader::chooseArtwork(
    const std::filesystem::path &file, const Track &track, const std::optional<QByteArray> &embedded)
{
    std::optional<QByteArray> chosen;
    if (!m_overrides.isEmpty()) {
        const auto path = m_overrides.constFind(overrideKey(track.artist, track.album, m_folder.path));
        if (path != m_overrides.constEnd()) {
            chosen = Files::readBelow(Files::fromText(*path), chosenCoverLimit);
        }
    }
    if (!chosen) {
        chosen = readSidecar(file);
    }
    if (chosen) {
        return m_pool.shared(*chosen);
    }
    return embedded ? embedded : folderCover();
}

const std::optional<QByteArray> &TrackReader::folderCover()
{
    if (!m_folder.coverLooked) {
        m_folder.coverLooked = true;
        for (const char *name : folderCovers) {
            if (const std::optional<QByteArray> bytes = readNamed(name, folderCoverLimit)) {
                m_folder.cover = m_pool.shared(*bytes);
                break;
            }
        }
    }
    return m_folder.cover;
}

TracksRead readTracks(TrackImport import, const ImportProgress &progress, const std::stop_token &stop)
{
    AudioFound found = findAudio(std::move(import.urls), stop, import.missing);
    if (stop.stop_requested()) {
        return {.tracks = {}, .isStopped = true};
    }
    std::vector<AudioFile> &files = found.files;
    const auto renamed = std::ranges::count_if(files, standardize);
    const bool areDistinct = FileOrder::sort(files);

    const auto total = int(files.size());
    if (!areDistinct || !import.known.empty()) {
        std::erase_if(files, [&](const AudioFile &file) { return !import.known.insert(file.path.native()).second; });
    }

    const bool isAsGiven = found.isAsGiven && renamed == 0 && areDistinct && int(files.size()) == total;
    ArtworkPool pool;
    for (const QByteArray &bytes : import.artwork) {
        (void)pool.shared(bytes);
    }

    const std::vector<Portion> portions = portionsOf(files);
    const int workers = readersAtOnce(found.volumes);
    std::vector<std::unique_ptr<TrackReader>> readers(static_cast<std::size_t>(workers));
    std::vector<Track> tracks(files.size()); // without an id until it is read
    std::mutex guard;
    int done = total - int(files.size());
    Parallel::forEach(portions.size(), workers, [&](std::size_t number, int worker) {
        std::unique_ptr<TrackReader> &reader = readers[std::size_t(worker)];
        if (!reader) {
            reader = std::make_unique<TrackReader>(import.artworkOverrides, pool, import.cache.get());
        }
        for (std::size_t file = portions[number].begin; file < portions[number].end; ++file) {
            if (stop.stop_requested()) {
                return;
            }
            tracks[file] = reader->read(std::move(files[file]));
            const std::lock_guard lock(guard);
            progress(++done, total);
        }
    });

    readers.clear(); // they hand over what they have found
    if (import.cache) {
        import.cache->finish();
    }
    std::erase_if(tracks, [](const Track &track) { return track.id.isNull(); });
    return {.tracks = std::move(tracks),
        .isStopped = done < total,
        .left = total - done,
        .present = found.present,
        .isAsGiven = isAsGiven && done == total};
}
