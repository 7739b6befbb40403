#include "library/TrackReader.h"

#include "library/AlbumGrouping.h"

#include "platform/files/Files.h"
#include "platform/files/RegularFile.h"
#include "platform/tasks/Parallel.h"
#include "platform/text/TextOrder.h"
#include "platform/volumes/DiskKind.h"

#include <QThread>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string_view>

namespace {

constexpr std::array folderCovers {"cover.jpeg", "cover.jpg", "cover.bmp", "folder.jpg", "cover.png", "folder.png"};
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

std::vector<Portion> portionsOf(const std::vector<std::filesystem::path> &files)
{
    constexpr std::size_t largest = 64; // files: several readers share a large folder
    std::vector<Portion> portions;
    std::string_view folder;
    for (std::size_t file = 0; file < files.size(); ++file) {
        const std::string_view path = files[file].native();
        const std::string_view its = path.substr(0, path.rfind('/'));
        if (file == 0 || its != folder || portions.back().end - portions.back().begin == largest) {
            portions.push_back({file, file});
            folder = its;
        }
        portions.back().end = file + 1;
    }
    return portions;
}

/// How many files are best read at once.
int readersAtOnce(const std::set<dev_t> &volumes)
{
    constexpr int onSlowDisks = 2; // one's next request waits at the disk while another's answer is worked on
    const auto isSerial = [](dev_t volume) { return Volumes::diskKind(volume) == Volumes::DiskKind::Serial; };
    const int cores = std::max(1, QThread::idealThreadCount());
    return std::any_of(volumes.begin(), volumes.end(), isSerial) ? onSlowDisks : cores;
}

} // namespace

QString overrideKey(const QString &artist, const QString &album, const std::filesystem::path &folder)
{
    return artist + QChar(u'\0') + album + QChar(u'\0') + Files::text(folder);
}

TrackReader::TrackReader(const QMap<QString, QString> &overrides, ArtworkPool &pool, ReadingCache *cache)
    : m_overrides(overrides)
    , m_pool(pool)
    , m_cache(cache)
{
    if (m_cache) {
        m_remembered.emplace(*m_cache);
    }
}

FileFacts TrackReader::factsOf(const std::filesystem::path &file, const std::optional<FileStamp> &stamp)
{
    if (!m_cache || !stamp) {
        return FileFacts::read(file);
    }
    if (std::optional<FileFacts> known = m_remembered->find(file, *stamp)) {
        return *std::move(known);
    }
    const std::uint64_t before = RegularFile::refusals();
    FileFacts facts = FileFacts::read(file);
    if (facts.picture) {
        facts.picture = m_pool.shared(*facts.picture);
    }
    if (RegularFile::refusals() == before) {
        m_cache->remember(file, *stamp, facts);
    }
    return facts;
}

std::optional<QByteArray> TrackReader::readPicture(const std::filesystem::path &file, std::int64_t limit)
{
    const std::optional<FileStamp> stamp = m_cache ? FileStamp::of(file) : std::nullopt;
    if (stamp && stamp->size < limit) {
        if (std::optional<FileFacts> known = m_remembered->find(file, *stamp)) {
            return std::move(known->picture);
        }
    }
    std::optional<QByteArray> bytes = Files::readBelow(file, limit);
    if (bytes) {
        bytes = m_pool.shared(*bytes);
    }
    if (bytes && stamp) {
        m_cache->remember(file, *stamp, {.info = {}, .picture = bytes});
    }
    return bytes;
}

/// The first that can be read of the folder's items of this name.
std::optional<QByteArray> TrackReader::readNamed(const std::filesystem::path &name, std::int64_t limit)
{
    for (const std::filesystem::path &file : m_folder.items.named(name)) {
        if (std::optional<QByteArray> bytes = readPicture(file, limit)) {
            return bytes;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> TrackReader::readSidecar(const std::filesystem::path &file)
{
    for (const char *extension : {".jpeg", ".jpg"}) {
        const std::filesystem::path name = file.filename().replace_extension(extension);
        if (std::optional<QByteArray> bytes = readNamed(name, chosenCoverLimit)) {
            return bytes;
        }
    }
    return std::nullopt;
}

Track TrackReader::read(const std::filesystem::path &file)
{
    const std::optional<FileStamp> stamp = FileStamp::of(file);
    FileFacts facts = factsOf(file, stamp);
    Track track;
    track.id = QUuid::createUuid();
    track.url = file;
    track.bytes = stamp ? stamp->size : Files::size(file).value_or(0);
    track.info = std::move(facts.info);
    const std::optional<QByteArray> embedded
        = facts.picture ? std::optional(m_pool.shared(*facts.picture)) : std::nullopt;
    if (facts.hasFlacPicture) {
        track.info.picture = embedded;
    }

    const Folder &folder = folderOf(file);
    track.title = tag(track.info, "TITLE").value_or(Files::baseName(file));
    track.artist = tag(track.info, "ALBUMARTIST").value_or(tag(track.info, "ARTIST").value_or(folder.artist));
    track.album = tag(track.info, "ALBUM").value_or(folder.name);
    if (track.info.trackNumber == 0) {
        track.info.trackNumber = leadingNumber(Files::name(file));
    }
    track.hasEmbeddedArt = embedded.has_value();
    track.artwork = chooseArtwork(track, embedded);
    return track;
}

TrackReader::Folder &TrackReader::folderOf(const std::filesystem::path &file)
{
    const std::filesystem::path path = file.parent_path();
    if (path != m_folder.path) {
        const QString name = Files::name(path);
        const std::filesystem::path above = path.parent_path();
        const std::filesystem::path artist = AlbumGrouping::folderDisc(name) ? above.parent_path() : above;
        m_folder = {.path = path,
            .name = name,
            .artist = Files::name(artist),
            .items = CaselessFolder(path),
            .coverLooked = false,
            .cover = {}};
    }
    return m_folder;
}

std::optional<QByteArray> TrackReader::chooseArtwork(const Track &track, const std::optional<QByteArray> &embedded)
{
    std::optional<QByteArray> chosen;
    if (!m_overrides.isEmpty()) {
        const auto path = m_overrides.constFind(overrideKey(track.artist, track.album, m_folder.path));
        if (path != m_overrides.constEnd()) {
            chosen = Files::readBelow(Files::fromText(*path), chosenCoverLimit);
        }
    }
    if (!chosen) {
        chosen = readSidecar(track.url);
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
    AudioFound found = findAudio(import.urls, stop, import.missing);
    if (stop.stop_requested()) {
        return {.tracks = {}, .isStopped = true};
    }
    std::vector<std::filesystem::path> &files = found.files;
    std::transform(files.begin(), files.end(), files.begin(), Files::standardized);
    TextOrder::stableSort(files, [](const std::filesystem::path &file) { return Files::text(file); });
    const auto total = int(files.size());
    std::erase_if(files, [&](const auto &file) { return !import.known.insert(file.native()).second; });

    ArtworkPool pool;
    for (const QByteArray &bytes : import.artwork) {
        (void)pool.shared(bytes);
    }
    std::vector<std::optional<Track>> tracks(files.size());
    const std::vector<Portion> portions = portionsOf(files);
    const int workers = readersAtOnce(found.volumes);
    std::vector<std::unique_ptr<TrackReader>> readers;
    for (int reader = 0; reader < workers; ++reader) {
        readers.push_back(std::make_unique<TrackReader>(import.artworkOverrides, pool, import.cache.get()));
    }
    std::mutex guard;
    int done = total - int(files.size());
    Parallel::forEach(portions.size(), workers, [&](std::size_t number, int worker) {
        for (std::size_t file = portions[number].begin; file < portions[number].end; ++file) {
            if (stop.stop_requested()) {
                return;
            }
            tracks[file] = readers[std::size_t(worker)]->read(files[file]);
            const std::lock_guard lock(guard);
            progress(++done, total);
        }
    });

    readers.clear();
    if (import.cache) {
        import.cache->finish();
    }

    TracksRead read {.tracks = {}, .isStopped = false, .left = total - done, .present = found.present};
    read.isStopped = read.left > 0;
    read.tracks.reserve(files.size());
    for (std::optional<Track> &track : tracks) {
        if (track) {
            read.tracks.push_back(*std::move(track));
        }
    }
    return read;
}
