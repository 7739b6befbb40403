// What the files of the library said when they were last read, so that they need not be opened again.
//
// One database in the user's cache folder, which may be deleted at any time. A file is the same while its place, size,
// times and, on the computer's own disks, inode and device are the same; what is given for it is then what reading it
// would give. Nothing here fails: a cache that is damaged, of another version, locked or not to be written is as good
// as none, and a damaged one is set aside. Each entry carries a digest of itself, so that nothing is taken from a file
// that something has harmed. Blocking; any thread.
#pragma once

#include "library/RememberedFolder.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <vector>

class Database;

class ReadingCache : public std::enable_shared_from_this<ReadingCache> {
public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;
    class Reader;

    explicit ReadingCache(std::filesystem::path file, Clock clock = std::chrono::system_clock::now);
    ~ReadingCache();

    /// No reader is at work any more: lets go of the pictures that were handed out, and writes what is new on another
    /// thread.
    void finish();
    /// Writes it now.
    void flush();

private:
    /// Where a folder's entry is found again: on a mounted disk by its UUID and the path below its mount point.
    struct Place {
        QByteArray volume;
        QByteArray folder;
        bool hasInodes = true; ///< FAT makes them up at each mount, and knows no time of change

        bool operator<(const Place &other) const
        {
            return std::tie(volume, folder) < std::tie(other.volume, other.folder);
        }
    };
    /// What has changed in a folder.
    struct Change {
        bool isPictureList = false; ///< of those pictures and that stamp
        RememberedFolder now; ///< files that are new or other ones
        std::vector<std::string> gone; ///< names of files
        bool isSeen = false; ///< nothing, but that it is still asked for
    };
    struct Volume {
        QByteArray name;
        std::string base; ///< what its paths begin with
        bool hasInodes = true;
    };

    [[nodiscard]] Place placeOf(const std::string &folder, dev_t volume);
    [[nodiscard]] std::unique_ptr<Database> open(std::chrono::milliseconds patience);
    void noteDamage(const Database &database);
    [[nodiscard]] std::optional<QByteArray> pictureHeld(const QByteArray &digest);
    [[nodiscard]] QByteArray holdPicture(const QByteArray &digest, const QByteArray &bytes);
    using Pictures = std::unordered_map<std::string, QByteArray>; ///< by digest
    void take(const Place &place, Change change, const Pictures &pictures);
    void write(Database &database, const std::map<Place, Change> &changes) const;
    void tidy(Database &database) const;
    void setAside();

    const std::filesystem::path m_file;
    const Clock m_clock;
    std::mutex m_writing; ///< held by the one that writes

    std::mutex m_guard; ///< of all below
    std::map<dev_t, Volume> m_volumes;
    Pictures m_pictures; ///< that are handed out
    std::map<Place, Change> m_changes;
    Pictures m_newPictures; ///< of those
    std::int64_t m_newBytes = 0;
    bool m_isDamaged = false;
};

/// One folder's files after the other, of one thread.
class ReadingCache::Reader {
public:
    explicit Reader(ReadingCache &cache);
    ~Reader();

    /// Goes to a folder; all else is about that.
    void enter(const std::filesystem::path &folder);

    /// Absent unless the file with this stamp is remembered.
    [[nodiscard]] std::optional<FileFacts> find(const std::string &name, const FileStamp &stamp);
    /// What was read of a file, which had this stamp before. Not remembered: what has changed since, or within the last
    /// seconds (FAT counts in twos), and what needs too much room.
    void remember(const std::string &name, const FileStamp &stamp, const FileFacts &facts);

    /// Names of the picture files in the folder; absent where that may have changed.
    [[nodiscard]] std::optional<std::vector<std::string>> pictures() const;
    /// What they are now; listed after enter().
    void rememberPictures(std::vector<std::string> names);

private:
    struct Connection;
    void leave();
    void load();
    [[nodiscard]] bool isSettled(const FileStamp &stamp) const;
    [[nodiscard]] FileStamp comparable(FileStamp stamp) const;
    [[nodiscard]] std::optional<QByteArray> picture(const QByteArray &digest);

    ReadingCache &m_cache;
    std::unique_ptr<Connection> m_connection; ///< null where nothing is remembered
    std::filesystem::path m_folder;
    std::optional<FileStamp> m_stamp; ///< of the folder; absent where nothing of it is remembered
    Place m_place;
    RememberedFolder m_known;
    std::unordered_map<std::string, bool> m_asked; ///< names that were asked for
    Change m_change;
    Pictures m_newPictures;
    QByteArray m_lastPicture; ///< that was remembered: the tracks of an album mostly carry the same one each
    QByteArray m_lastDigest;
};
