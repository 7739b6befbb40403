#include "library/TrackReader.h"

#include "library/LibraryScan.h"

#include "library/AlbumGrouping.h"

#include "platform/files/Files.h"
#include "platform/text/TextOrder.h"

#include <algorithm>
#include <array>

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

/// The first that can be read of the items of this name.
std::optional<QByteArray> readNamed(const CaselessFolder &items, const std::filesystem::path &name, std::int64_t limit)
{
    for (const std::filesystem::path &file : items.named(name)) {
        if (std::optional<QByteArray> bytes = Files::readBelow(file, limit)) {
            return bytes;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> readSidecar(const std::filesystem::path &file, const CaselessFolder &items)
{
    for (const char *extension : {".jpeg", ".jpg"}) {
        const std::filesystem::path name = file.filename().replace_extension(extension);
        if (std::optional<QByteArray> bytes = readNamed(items, name, chosenCoverLimit)) {
            return bytes;
        }
    }
    return std::nullopt;
}

} // namespace

QString overrideKey(const QString &artist, const QString &album, const std::filesystem::path &folder)
{
    return artist + QChar(u'\0') + album + QChar(u'\0') + Files::text(folder);
}

TrackReader::TrackReader(QMap<QString, QString> overrides, const std::vector<QByteArray> &heldArtwork)
    : m_overrides(std::move(overrides))
{
    for (const QByteArray &bytes : heldArtwork) {
        (void)m_pool.shared(bytes);
    }
}

Track TrackReader::read(const std::filesystem::path &file)
{
    MediaAsset asset(file);
    Track track;
    track.id = QUuid::createUuid();
    track.url = file;
    track.bytes = Files::size(file).value_or(0);
    track.info = AudioInfo::read(file, asset);

    const bool flac = Files::extension(file).compare(QLatin1String("flac"), Qt::CaseInsensitive) == 0;
    std::optional<QByteArray> embedded = flac ? std::nullopt : applyTagItems(asset.metadata(), track.info);
    if (!embedded) {
        embedded = track.info.picture;
    }
    if (embedded) {
        embedded = m_pool.shared(*embedded);
    }
    if (track.info.picture) {
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
        chosen = readSidecar(track.url, m_folder.items);
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
            if (const std::optional<QByteArray> bytes = readNamed(m_folder.items, name, folderCoverLimit)) {
                m_folder.cover = m_pool.shared(*bytes);
                break;
            }
        }
    }
    return m_folder.cover;
}

TracksRead readTracks(TrackImport import, const ImportProgress &progress, const std::stop_token &stop)
{
    std::vector<std::filesystem::path> files = scanAudio(import.urls, stop);
    if (stop.stop_requested()) {
        return {.tracks = {}, .isStopped = true};
    }
    std::transform(files.begin(), files.end(), files.begin(), Files::standardized);
    TextOrder::stableSort(files, [](const std::filesystem::path &file) { return Files::text(file); });
    TrackReader reader(std::move(import.artworkOverrides), import.artwork);
    TracksRead read;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!import.known.insert(files[i].native()).second) {
            continue;
        }
        if (stop.stop_requested()) {
            ++read.left;
            continue;
        }
        read.tracks.push_back(reader.read(files[i]));
        progress(int(i + 1), int(files.size()));
    }
    read.isStopped = read.left > 0;
    return read;
}
