// Makes Track records of audio files: tags, the fallback for each missing one, and the cover.
//
// Blocking, reads the files one after the other; any thread but the UI's; never throws for a file: one that cannot be
// read still yields a record.
#pragma once

#include "library/Track.h"

#include "library/ArtworkPool.h"

#include "platform/files/CaselessFolder.h"

#include <QMap>

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
};

/// What one import found.
struct TracksRead {
    std::vector<Track> tracks;
    bool isStopped = false; ///< before all were read
    int left = 0; ///< new files that were found and not read; not known where the stop came while they were looked for
};

/// Called after each file that is read, with the number of files done and of all found.
using ImportProgress = std::function<void(int done, int total)>;

/// Reads the new audio files among and below the given ones, in the order of their paths as a file manager shows them.
/// Ends before the next file once `stop` is requested.
[[nodiscard]] TracksRead readTracks(
    TrackImport import, const ImportProgress &progress, const std::stop_token &stop = {});

/// What makes tracks as readTracks() does.
using TrackSource = std::function<TracksRead(TrackImport, const ImportProgress &, const std::stop_token &)>;

/// The key of "artworkOverrides": artist, NUL, album, NUL, folder.
[[nodiscard]] QString overrideKey(const QString &artist, const QString &album, const std::filesystem::path &folder);

/// Reads one file after another, keeping what files of one folder have in common.
class TrackReader {
public:
    TrackReader(QMap<QString, QString> overrides, const std::vector<QByteArray> &heldArtwork);

    [[nodiscard]] Track read(const std::filesystem::path &file);

private:
    struct Folder {
        std::filesystem::path path;
        QString name;
        QString artist; ///< fallback: the folder that stands for the artist
        CaselessFolder items;
        bool coverLooked = false;
        std::optional<QByteArray> cover;
    };

    Folder &folderOf(const std::filesystem::path &file);
    std::optional<QByteArray> chooseArtwork(const Track &track, const std::optional<QByteArray> &embedded);
    const std::optional<QByteArray> &folderCover();

    QMap<QString, QString> m_overrides;
    ArtworkPool m_pool;
    Folder m_folder; ///< of the last file: files come folder by folder
};
