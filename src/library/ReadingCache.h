// What the files of the library said when they were last read, so that they need not be opened again.
//
// One database in the user's cache folder, which may be deleted at any time. A file is the same while its place, size,
// times and, on the computer's own disks, inode and device are the same; what is given for it is then what reading it
// would give. Nothing here fails: a cache that is damaged, of another version, locked or not to be written is as good
// as none, and a damaged one is set aside. Each entry carries a digest of itself, so that nothing is taken from a file
// that something has harmed. Blocking; any thread.
#pragma once

#include "library/FileFacts.h"

#include "platform/files/FileStamp.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

class Database;

class ReadingCache : public std::enable_shared_from_this<ReadingCache> {
public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    explicit ReadingCache(std::filesystem::path file, Clock clock = std::chrono::system_clock::now);
    ~ReadingCache();

    /// Where a volume's entries are found again: on a mounted disk by its UUID and the path below its mount point.
    struct Place {
        QByteArray volume;
        QByteArray folder;
        bool hasInodes = true; ///< FAT makes them up at each mount, and knows no time of change
    };

    /// Looks up one file after the other; of one thread. It holds the entries of the folder that was asked for last.
    class Reader {
    public:
        explicit Reader(ReadingCache &cache);
        ~Reader();

        /// Absent unless the file with this stamp is remembered.
        [[nodiscard]] std::optional<FileFacts> find(const std::filesystem::path &file, const FileStamp &stamp);

    private:
        struct Connection;
        struct Entry;
        void leave();
        void look(const std::filesystem::path &folder, dev_t volume);
        [[nodiscard]] std::optional<FileFacts> factsOf(const Entry &entry);

        ReadingCache &m_cache;
        std::unique_ptr<Connection> m_connection; ///< null where nothing is remembered
        std::string m_folder; ///< of the last file
        Place m_place; ///< that folder's
        std::int64_t m_number = 0; ///< and its entry's
        std::unordered_map<std::string, Entry> m_entries; ///< by name
    };

    /// What was read of the file, which had this stamp before. It is written soon. Not remembered: what has changed
    /// since, or within the last seconds (FAT counts in twos), and what needs too much room.
    void remember(const std::filesystem::path &file, const FileStamp &stamp, const FileFacts &facts);
    /// Lets go of pictures that were handed out, and writes what is to be remembered, on another thread.
    void finish();
    /// Writes it now.
    void flush();

private:
    struct Pending {
        Place place;
        QByteArray name;
        FileStamp stamp;
        QByteArray facts;
        std::optional<QByteArray> picture;
    };

    [[nodiscard]] Place placeOf(const std::filesystem::path &folder, dev_t volume);
    [[nodiscard]] std::unique_ptr<Database> open();
    [[nodiscard]] std::optional<QByteArray> pictureHeld(const QByteArray &digest);
    [[nodiscard]] QByteArray holdPicture(const QByteArray &digest, const QByteArray &bytes);
    void write(Database &database, const std::vector<Pending> &pending) const;
    void tidy(Database &database) const;
    void setAside();

    const std::filesystem::path m_file;
    const Clock m_clock;

    struct Volume {
        QByteArray name;
        std::string base; ///< what its paths begin with
        bool hasInodes = true;
    };
    std::mutex m_guard; ///< of what follows
    std::map<dev_t, Volume> m_volumes;
    std::unordered_map<std::string, QByteArray> m_pictures; ///< by digest
    std::vector<Pending> m_pending;
    std::int64_t m_pendingBytes = 0;
    std::vector<std::int64_t> m_seen; ///< folders' numbers that have not been asked for since long
    std::vector<std::pair<std::int64_t, QByteArray>> m_gone; ///< files that are not there any more
    bool m_isDamaged = false;
    std::mutex m_writing; ///< one writer
};
