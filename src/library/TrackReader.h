// Makes Track records of audio files: tags, the fallback for each missing one, and the cover.
//
// Blocking, several files at once where the disk takes that; any thread but the UI's; never throws for a file: one that
// cannot be read still yields a record.
#pragma once

#include "library/ArtworkPool.h"
#include "library/LibraryScan.h"
#include "library/ReadingCache.h"
#include "library/Track.h"

#include "platform/files/CaselessFolder.h"

#include <QMap>
#include <QRandomGenerator>
#include <QUuid>

#include <functional>
#include <optional>
#include <stop_token>
#include <unordered_set>
#include <vector>

/// What one import starts from.
struct TrackImport {
    std::vector<std::filesystem::path> urls; ///< files and folders
    std::unordered_set<std::string> known; ///< standardized paths of tracks that are there already
    QMap<QString, QString> artworkOverrides; ///< overrideKey() to the path of a chosen cover
    std::vector<QByteArray> artwork; ///< covers held already, for new tracks to share
    std::shared_ptr<ReadingCache> cache = {}; ///< remembers what files said; may be none
    Missing missing = Missing::Keep; ///< what becomes of given files that are not there
};

/// What one import found.
struct TracksRead {
    std::vector<Track> tracks;
    bool isStopped = false; ///< before all were read
    int left = 0; ///< new files that were found and not read; not known where the stop came while they were looked for
    std::size_t present = 1; ///< how many of the given files and folders there were
    bool isAsGiven = false; ///< the tracks are the given files, one for one
};

/// Called after each file that is read, with the number of files done and of all found; one call at a time, on any
/// thread.
using ImportProgress = std::function<void(int done, int total)>;

/// Reads the new audio files among and below the given ones. They come in the order of their paths as a file manager
/// shows them. Begins no other file once `stop` is requested.
[[nodiscard]] TracksRead readTracks(
    TrackImport import, const ImportProgress &progress, const std::stop_token &stop = {});

/// What makes tracks as readTracks() does.
using TrackSource = std::function<TracksRead(TrackImport, const ImportProgress &, const std::stop_token &)>;

/// The key of "artworkOverrides": artist, NUL, album, NUL, folder.
[[nodiscard]] QString overrideKey(const QString &artist, const QString &album, const std::filesystem::path &folder);

/// Reads one file after another, keeping what files of one folder have in common.
class TrackReader {
public:
    /// All outlive it, and may be other readers' too. `cache` may be null.
    TrackReader(const QMap<QString, QString> &overrides, ArtworkPool &pool, ReadingCache *cache);

    [[nodiscard]] Track read(AudioFile file);

private:
    struct Folder {
        std::filesystem::path path;
        QString name;
        QString artist; ///< fallback: the folder that stands for the artist
        CaselessFolder pictures;
        bool coverLooked = false;
        std::optional<QByteArray> cover;
    };

    QUuid newId();
    /// As FileFacts::read() gives it, or remembered.
    FileFacts factsOf(const AudioFile &file);
    std::optional<QByteArray> readPicture(const std::filesystem::path &file, std::int64_t limit);
    std::optional<QByteArray> readNamed(const std::filesystem::path &name, std::int64_t limit);
    std::optional<QByteArray> readSidecar(const std::filesystem::path &file);
    Folder &folderOf(const std::filesystem::path &file);
    std::vector<std::string> pictureNames(const std::filesystem::path &folder);
    std::optional<QByteArray> chooseArtwork(
        const std::filesystem::path &file, const Track &track, const std::optional<QByteArray> &embedded);
    const std::optional<QByteArray> &folderCover();

    const QMap<QString, QString> &m_overrides;
    ArtworkPool &m_pool;
    std::optional<ReadingCache::Reader> m_remembered;
    QRandomGenerator m_random = QRandomGenerator::securelySeeded();
    Folder m_folder; ///< of the last file: files come folder by folder
};
