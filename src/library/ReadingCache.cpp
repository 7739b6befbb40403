#include "library/ReadingCache.h"

#include "platform/files/Database.h"
#include "platform/files/DiskCalls.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"
#include "platform/files/Sha256.h"
#include "platform/tasks/Background.h"
#include "platform/volumes/DiskKind.h"
#include "platform/volumes/Volumes.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

namespace {

constexpr std::int64_t version = 1;
constexpr std::chrono::seconds youngest(3); // a file that changed later may change again under the same time
constexpr qsizetype maxFacts = 1500; // bytes of an entry
constexpr std::int64_t maxPendingBytes = 64'000'000;
constexpr std::size_t maxPendingRows = 4000;
constexpr std::int64_t seenEvery = 7; // days between notes that a folder is still asked for
constexpr std::int64_t forgottenAfter = 90; // days
constexpr qsizetype checkBytes = 16;

// Bytes rather than text in all names: a name on Linux is bytes. A picture is stored once, by its digest.
constexpr const char *schema = R"(
    PRAGMA auto_vacuum = INCREMENTAL;
    PRAGMA journal_mode = TRUNCATE;
    BEGIN IMMEDIATE;
    CREATE TABLE IF NOT EXISTS folders (id INTEGER PRIMARY KEY, volume BLOB NOT NULL, path BLOB NOT NULL,
        seen INTEGER NOT NULL, UNIQUE (volume, path));
    CREATE TABLE IF NOT EXISTS files (folder INTEGER NOT NULL, name BLOB NOT NULL, size INTEGER NOT NULL,
        modified INTEGER NOT NULL, changed INTEGER NOT NULL, inode INTEGER NOT NULL, facts BLOB NOT NULL,
        picture BLOB, digest BLOB NOT NULL, PRIMARY KEY (folder, name)) WITHOUT ROWID;
    CREATE INDEX IF NOT EXISTS pictured ON files (picture) WHERE picture IS NOT NULL;
    CREATE TABLE IF NOT EXISTS pictures (id INTEGER PRIMARY KEY, digest BLOB NOT NULL UNIQUE, bytes BLOB NOT NULL);
    PRAGMA user_version = 1;
    COMMIT;
)";

/// Of the pieces with their lengths, so that none can pass for a part of another.
class Digest {
public:
    Digest &add(QByteArrayView bytes)
    {
        add(std::int64_t(bytes.size()));
        m_sha.update({bytes.data(), std::size_t(bytes.size())});
        return *this;
    }
    Digest &add(std::int64_t number)
    {
        std::array<char, sizeof number> bytes {};
        std::memcpy(bytes.data(), &number, sizeof number);
        m_sha.update(bytes);
        return *this;
    }
    [[nodiscard]] QByteArray finish()
    {
        const Sha256::Digest digest = m_sha.finish();
        return {reinterpret_cast<const char *>(digest.data()), qsizetype(digest.size())};
    }

private:
    Sha256 m_sha;
};

QByteArray digestOf(const QByteArray &bytes)
{
    Sha256 sha;
    sha.update({bytes.constData(), std::size_t(bytes.size())});
    const Sha256::Digest digest = sha.finish();
    return {reinterpret_cast<const char *>(digest.data()), qsizetype(digest.size())};
}

/// A file's entry as the database has it.
struct Row {
    QByteArrayView name;
    std::int64_t size = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;
    std::int64_t inode = 0;
    QByteArrayView facts;
    std::optional<QByteArrayView> picture; ///< its digest

    [[nodiscard]] QByteArray digest(const ReadingCache::Place &place) const
    {
        Digest digest;
        digest.add(place.volume).add(place.folder).add(name).add(size).add(modified).add(changed).add(inode);
        digest.add(facts).add(std::int64_t(picture.has_value())).add(picture.value_or(QByteArrayView()));
        return digest.finish().first(checkBytes);
    }
};

Row rowOf(const FileStamp &stamp, bool hasInodes)
{
    return {.name = {},
        .size = stamp.size,
        .modified = stamp.modified,
        .changed = hasInodes ? stamp.changed : 0,
        .inode = hasInodes ? std::int64_t(stamp.inode) : 0,
        .facts = {},
        .picture = {}};
}

std::int64_t dayOf(std::chrono::system_clock::time_point time)
{
    return std::chrono::duration_cast<std::chrono::days>(time.time_since_epoch()).count();
}

} // namespace

ReadingCache::ReadingCache(std::filesystem::path file, Clock clock)
    : m_file(std::move(file))
    , m_clock(std::move(clock))
{
}

ReadingCache::~ReadingCache() = default;

ReadingCache::Place ReadingCache::placeOf(const std::filesystem::path &folder, dev_t volume)
{
    const std::lock_guard lock(m_guard);
    auto known = m_volumes.find(volume);
    if (known == m_volumes.end()) {
        Volume made {.name = "device " + QByteArray::number(qulonglong(volume)), .base = {}, .hasInodes = true};
        const Volumes::VolumeIdentity identity = Volumes::identityOf(volume);
        if (!identity.uuid.empty() && Volumes::isMountedDisk(identity.mountPoint)) {
            made.name = "uuid " + QByteArray::fromStdString(identity.uuid);
            made.base = identity.mountPoint.native();
            made.hasInodes = Volumes::nameRules(identity.mountPoint) == Volumes::NameRules::Posix;
        }
        known = m_volumes.emplace(volume, std::move(made)).first;
    }
    const Volume &found = known->second;
    const std::string &path = folder.native();
    const bool isBelow = path.starts_with(found.base)
        && (path.size() == found.base.size() || found.base.empty() || path[found.base.size()] == '/');
    return {.volume = found.name,
        .folder = QByteArray::fromStdString(isBelow ? path.substr(found.base.size()) : path),
        .hasInodes = found.hasInodes};
}

/// A database with our tables; null where there is none to be had.
std::unique_ptr<Database> ReadingCache::open()
{
    try {
        Files::makeFolders(m_file.parent_path());
    } catch (const std::system_error &) {
        return nullptr;
    }
    std::unique_ptr<Database> database = Database::open(m_file);
    if (!database) {
        return nullptr;
    }
    const std::int64_t found = database->number("PRAGMA user_version", -1);
    if (found == 0 && database->number("SELECT count(*) FROM sqlite_schema", -1) == 0) {
        (void)database->run(schema);
    }
    if (database->isDamaged() || (found > 0 && found != version)) {
        const std::lock_guard lock(m_guard);
        m_isDamaged = true;
        return nullptr;
    }
    return database->hasFailed() ? nullptr : std::move(database);
}

std::optional<QByteArray> ReadingCache::pictureHeld(const QByteArray &digest)
{
    const std::lock_guard lock(m_guard);
    const auto found = m_pictures.find(digest.toStdString());
    return found != m_pictures.end() ? std::optional(found->second) : std::nullopt;
}

/// What is held under the digest: these bytes, or what another thread has found meanwhile.
QByteArray ReadingCache::holdPicture(const QByteArray &digest, const QByteArray &bytes)
{
    const std::lock_guard lock(m_guard);
    return m_pictures.try_emplace(digest.toStdString(), bytes).first->second;
}

struct ReadingCache::Reader::Connection {
    explicit Connection(std::unique_ptr<Database> opened)
        : database(std::move(opened))
    {
    }

    std::unique_ptr<Database> database;
    DatabaseStatement folder {*database, "SELECT id, seen FROM folders WHERE volume = ? AND path = ?"};
    DatabaseStatement files {
        *database, "SELECT name, size, modified, changed, inode, facts, picture, digest FROM files WHERE folder = ?"};
    DatabaseStatement picture {*database, "SELECT bytes FROM pictures WHERE digest = ?"};
};

struct ReadingCache::Reader::Entry {
    FileStamp stamp; ///< as far as entries have it
    QByteArray facts;
    std::optional<QByteArray> picture; ///< its digest
    bool isAskedFor = false;
};

ReadingCache::Reader::Reader(ReadingCache &cache)
    : m_cache(cache)
{
    if (std::unique_ptr<Database> database = cache.open()) {
        m_connection = std::make_unique<Connection>(std::move(database));
    }
}

ReadingCache::Reader::~Reader()
{
    leave();
    if (m_connection && m_connection->database->isDamaged()) {
        const std::lock_guard lock(m_cache.m_guard);
        m_cache.m_isDamaged = true;
    }
}

/// Of what nobody has asked for some may be gone.
void ReadingCache::Reader::leave()
{
    for (const auto &[name, entry] : m_entries) {
        if (!entry.isAskedFor && !FileStamp::of(std::filesystem::path(m_folder) / name)) {
            const std::lock_guard lock(m_cache.m_guard);
            m_cache.m_gone.emplace_back(m_number, QByteArray::fromStdString(name));
        }
    }
    m_entries.clear();
}

void ReadingCache::Reader::look(const std::filesystem::path &folder, dev_t volume)
{
    leave();
    m_folder = folder.native();
    m_place = m_cache.placeOf(folder, volume);
    DatabaseStatement &known = m_connection->folder;
    if (!known.start().with(m_place.volume).with(m_place.folder).next()) {
        known.start();
        return;
    }
    m_number = known.number(0);
    const std::int64_t seen = known.number(1);
    known.start(); // what is not at its end keeps writers out
    if (std::abs(dayOf(m_cache.m_clock()) - seen) >= seenEvery) {
        const std::lock_guard lock(m_cache.m_guard);
        m_cache.m_seen.push_back(m_number);
    }
    DatabaseStatement &files = m_connection->files;
    for (files.start().with(m_number); files.next();) {
        Row row {.name = files.bytes(0),
            .size = files.number(1),
            .modified = files.number(2),
            .changed = files.number(3),
            .inode = files.number(4),
            .facts = files.bytes(5),
            .picture = {}};
        if (!files.bytes(6).isEmpty()) {
            row.picture = files.bytes(6);
        }
        if (files.bytes(7) == row.digest(m_place)) {
            m_entries.emplace(row.name.toByteArray().toStdString(),
                Entry {.stamp = {.volume = volume,
                           .inode = std::uint64_t(row.inode),
                           .size = row.size,
                           .modified = row.modified,
                           .changed = row.changed},
                    .facts = row.facts.toByteArray(),
                    .picture = row.picture ? std::optional(row.picture->toByteArray()) : std::nullopt,
                    .isAskedFor = false});
        }
    }
    files.start();
}

std::optional<FileFacts> ReadingCache::Reader::find(const std::filesystem::path &file, const FileStamp &stamp)
{
    if (!m_connection || m_connection->database->hasFailed()) {
        return std::nullopt;
    }
    if (const std::filesystem::path folder = file.parent_path(); folder.native() != m_folder) {
        look(folder, stamp.volume);
    }
    const auto found = m_entries.find(file.filename().native());
    if (found == m_entries.end()) {
        return std::nullopt;
    }
    found->second.isAskedFor = true;
    FileStamp wanted = stamp;
    if (!m_place.hasInodes) {
        wanted.inode = 0;
        wanted.changed = 0;
    }
    return found->second.stamp == wanted ? factsOf(found->second) : std::nullopt;
}

std::optional<FileFacts> ReadingCache::Reader::factsOf(const Entry &entry)
{
    std::optional<FileFacts> facts = FileFacts::decoded(entry.facts);
    if (!facts || !entry.picture) {
        return facts;
    }
    facts->picture = m_cache.pictureHeld(*entry.picture);
    if (!facts->picture) {
        DatabaseStatement &picture = m_connection->picture;
        const bool isThere = picture.start().with(*entry.picture).next();
        const QByteArray bytes = isThere ? picture.bytes(0).toByteArray() : QByteArray();
        picture.start();
        if (!isThere || digestOf(bytes) != *entry.picture) {
            return std::nullopt;
        }
        facts->picture = m_cache.holdPicture(*entry.picture, bytes);
    }
    return facts;
}

void ReadingCache::remember(const std::filesystem::path &file, const FileStamp &stamp, const FileFacts &facts)
{
    const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(m_clock().time_since_epoch()).count();
    const auto isYoung
        = [&](std::int64_t time) { return std::abs(now - time) < std::chrono::nanoseconds(youngest).count(); };
    const Place place = placeOf(file.parent_path(), stamp.volume);
    if (isYoung(stamp.modified) || (place.hasInodes && isYoung(stamp.changed)) || FileStamp::of(file) != stamp) {
        return;
    }
    QByteArray encoded = facts.encoded();
    if (encoded.size() > maxFacts) {
        return;
    }
    bool isMuch = false;
    {
        const std::lock_guard lock(m_guard);
        m_pendingBytes += facts.picture ? facts.picture->size() : 0;
        m_pending.push_back({.place = place,
            .name = QByteArray::fromStdString(file.filename().native()),
            .stamp = stamp,
            .facts = std::move(encoded),
            .picture = facts.picture});
        isMuch = m_pending.size() == maxPendingRows || m_pendingBytes > maxPendingBytes;
        m_pendingBytes = isMuch ? 0 : m_pendingBytes;
    }
    if (isMuch) {
        BackgroundJobs::startOn(
            BackgroundJobs::pool(JobPriority::Utility), [self = shared_from_this()] { self->flush(); });
    }
}

void ReadingCache::finish()
{
    {
        const std::lock_guard lock(m_guard);
        m_pictures.clear();
        m_volumes.clear(); // another disk may be mounted next time
        if (m_pending.empty() && m_seen.empty() && m_gone.empty() && !m_isDamaged) {
            return;
        }
    }
    BackgroundJobs::startOn(BackgroundJobs::pool(JobPriority::Utility), [self = shared_from_this()] { self->flush(); });
}

void ReadingCache::flush()
{
    const std::lock_guard writing(m_writing);
    std::vector<Pending> pending;
    std::vector<std::int64_t> seen;
    std::vector<std::pair<std::int64_t, QByteArray>> gone;
    {
        const std::lock_guard lock(m_guard);
        pending.swap(m_pending);
        seen.swap(m_seen);
        gone.swap(m_gone);
        m_pendingBytes = 0;
    }
    setAside();
    if (pending.empty() && seen.empty() && gone.empty()) {
        return;
    }
    const std::unique_ptr<Database> database = open();
    if (!database || !database->run("BEGIN IMMEDIATE")) {
        return;
    }
    DatabaseStatement see(*database, "UPDATE folders SET seen = ? WHERE id = ?");
    for (const std::int64_t folder : seen) {
        (void)see.start().with(dayOf(m_clock())).with(folder).run();
    }
    DatabaseStatement drop(*database, "DELETE FROM files WHERE folder = ? AND name = ?");
    for (const auto &[folder, name] : gone) {
        (void)drop.start().with(folder).with(name).run();
    }
    write(*database, pending);
    tidy(*database);
    (void)database->run(database->hasFailed() ? "ROLLBACK" : "COMMIT");
    (void)database->run("PRAGMA incremental_vacuum");
    if (database->isDamaged()) {
        const std::lock_guard lock(m_guard);
        m_isDamaged = true;
    }
}

void ReadingCache::write(Database &database, const std::vector<Pending> &pending) const
{
    DatabaseStatement addFolder(
        database, "INSERT INTO folders (volume, path, seen) VALUES (?, ?, ?) ON CONFLICT (volume, path) DO NOTHING");
    DatabaseStatement findFolder(database, "SELECT id FROM folders WHERE volume = ? AND path = ?");
    DatabaseStatement addPicture(database,
        "INSERT INTO pictures (digest, bytes) VALUES (?, ?) ON CONFLICT (digest) DO UPDATE SET bytes = excluded.bytes "
        "WHERE bytes <> excluded.bytes");
    DatabaseStatement addFile(database, "INSERT OR REPLACE INTO files VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    const std::int64_t today = dayOf(m_clock());
    std::unordered_map<const char *, QByteArray> digests; // of equal covers, which share their bytes
    const Place *last = nullptr;
    std::int64_t folder = 0;
    for (const Pending &entry : pending) {
        if (database.hasFailed()) {
            return;
        }
        if (!last || last->folder != entry.place.folder || last->volume != entry.place.volume) {
            (void)addFolder.start().with(entry.place.volume).with(entry.place.folder).with(today).run();
            folder = findFolder.start().with(entry.place.volume).with(entry.place.folder).next() ? findFolder.number(0)
                                                                                                 : 0;
            findFolder.start();
            last = &entry.place;
        }
        Row row = rowOf(entry.stamp, entry.place.hasInodes);
        row.name = entry.name;
        row.facts = entry.facts;
        if (entry.picture) {
            const auto [digest, isNew] = digests.try_emplace(entry.picture->constData());
            if (isNew) {
                digest->second = digestOf(*entry.picture);
                (void)addPicture.start().with(digest->second).with(*entry.picture).run();
            }
            row.picture = digest->second;
        }
        const QByteArray digest = row.digest(entry.place);
        addFile.start().with(folder).with(row.name).with(row.size).with(row.modified).with(row.changed).with(row.inode);
        addFile.with(row.facts);
        (void)(row.picture ? addFile.with(*row.picture) : addFile.withNothing()).with(digest).run();
    }
}

/// Drops what nobody has asked for since long, and pictures that no file has any more.
void ReadingCache::tidy(Database &database) const
{
    const std::int64_t longAgo = dayOf(m_clock()) - forgottenAfter;
    DatabaseStatement files(database, "DELETE FROM files WHERE folder IN (SELECT id FROM folders WHERE seen < ?)");
    (void)files.start().with(longAgo).run();
    DatabaseStatement folders(database, "DELETE FROM folders WHERE seen < ?");
    (void)folders.start().with(longAgo).run();
    (void)database.run("DELETE FROM pictures WHERE NOT EXISTS (SELECT 1 FROM files WHERE picture = pictures.digest)");
}

/// A damaged file keeps a name of its own, for whoever wants to know what has happened to it.
void ReadingCache::setAside()
{
    {
        const std::lock_guard lock(m_guard);
        if (!std::exchange(m_isDamaged, false)) {
            return;
        }
    }
    // First its journal: found beside a new database, it would be played back into that.
    const std::filesystem::path journal = m_file.native() + "-journal";
    const std::filesystem::path aside = m_file.native() + ".damaged";
    (void)diskCalls().unlink(journal.c_str());
    (void)diskCalls().renameat(AT_FDCWD, m_file.c_str(), AT_FDCWD, aside.c_str());
}
