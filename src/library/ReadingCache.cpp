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
#include <numeric>
#include <system_error>
#include <utility>

namespace {

constexpr std::int64_t version = 1;
constexpr std::chrono::nanoseconds youngest = std::chrono::seconds(3); // what changed later may do so again unseen
constexpr std::chrono::milliseconds readersPatience(300); // reading the files anew is not worth more
constexpr std::chrono::milliseconds writersPatience(2000);
constexpr qsizetype maxTags = 2400; // bytes of a file's texts; packed they are half of that
constexpr std::int64_t maxWaitingBytes = 64'000'000;
constexpr std::size_t maxWaitingFolders = 1000;
constexpr std::int64_t seenEvery = 7; // days between notes that a folder is still asked for
constexpr std::int64_t forgottenAfter = 90; // days
constexpr qsizetype checkBytes = 16;

// Bytes rather than text in all names: a name on Linux is bytes. A picture is stored once, by its digest.
constexpr const char *schema = R"(
    PRAGMA auto_vacuum = INCREMENTAL;
    PRAGMA journal_mode = TRUNCATE;
    BEGIN IMMEDIATE;
    CREATE TABLE IF NOT EXISTS folders (id INTEGER PRIMARY KEY, volume BLOB NOT NULL, path BLOB NOT NULL,
        seen INTEGER NOT NULL, files BLOB NOT NULL, digest BLOB NOT NULL, UNIQUE (volume, path));
    CREATE TABLE IF NOT EXISTS pictures (id INTEGER PRIMARY KEY, digest BLOB NOT NULL UNIQUE, bytes BLOB NOT NULL);
    CREATE TABLE IF NOT EXISTS uses (folder INTEGER NOT NULL, picture BLOB NOT NULL, PRIMARY KEY (folder, picture))
        WITHOUT ROWID;
    CREATE INDEX IF NOT EXISTS users ON uses (picture);
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

} // namespace

ReadingCache::ReadingCache(std::filesystem::path file, Clock clock)
    : m_file(std::move(file))
    , m_clock(std::move(clock))
{
}

ReadingCache::~ReadingCache() = default;

ReadingCache::Place ReadingCache::placeOf(const std::string &folder, dev_t volume)
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
    const bool isBelow = folder.starts_with(found.base);
    return {.volume = found.name,
        .folder = QByteArray::fromStdString(isBelow ? folder.substr(found.base.size()) : folder),
        .hasInodes = found.hasInodes};
}

/// A database with our tables; null where there is none to be had.
std::unique_ptr<Database> ReadingCache::open(std::chrono::milliseconds patience)
{
    try {
        Files::makeFolders(m_file.parent_path());
    } catch (const std::system_error &) {
        return nullptr;
    }
    std::unique_ptr<Database> database = Database::open(m_file, patience);
    if (!database) {
        return nullptr;
    }
    std::int64_t found = database->number("PRAGMA user_version", -1);
    if (found == 0 && database->number("SELECT count(*) FROM sqlite_schema", -1) == 0 && database->run(schema)) {
        found = version;
    }
    if (!database->hasFailed() && found != version) {
        const std::lock_guard lock(m_guard);
        m_isDamaged = true; // another program's, or another version's
        return nullptr;
    }
    noteDamage(*database);
    return database->hasFailed() ? nullptr : std::move(database);
}

void ReadingCache::noteDamage(const Database &database)
{
    if (database.isDamaged()) {
        const std::lock_guard lock(m_guard);
        m_isDamaged = true;
    }
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

void ReadingCache::take(const Place &place, Change change, const Pictures &pictures)
{
    bool isMuch = false;
    {
        const std::lock_guard lock(m_guard);
        for (const auto &[digest, bytes] : pictures) {
            m_newBytes += m_newPictures.try_emplace(digest, bytes).second ? bytes.size() : 0;
        }
        Change &waiting = m_changes[place];
        if (change.isPictureList) {
            waiting.isPictureList = true;
            waiting.now.stamp = change.now.stamp;
            waiting.now.pictures = std::move(change.now.pictures);
        }
        for (auto &[name, file] : change.now.files) {
            waiting.now.files.insert_or_assign(name, std::move(file));
        }
        waiting.gone.insert(waiting.gone.end(), change.gone.begin(), change.gone.end());
        isMuch = m_changes.size() == maxWaitingFolders || m_newBytes > maxWaitingBytes;
        m_newBytes = isMuch ? 0 : m_newBytes;
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
        if (m_changes.empty() && !m_isDamaged) {
            return;
        }
    }
    BackgroundJobs::startOn(BackgroundJobs::pool(JobPriority::Utility), [self = shared_from_this()] { self->flush(); });
}

void ReadingCache::flush()
{
    const std::lock_guard writing(m_writing);
    std::map<Place, Change> changes;
    Pictures pictures;
    {
        const std::lock_guard lock(m_guard);
        changes.swap(m_changes);
        pictures.swap(m_newPictures);
        m_newBytes = 0;
    }
    setAside();
    const std::unique_ptr<Database> database = changes.empty() ? nullptr : open(writersPatience);
    if (!database || !database->run("BEGIN IMMEDIATE")) {
        return;
    }
    DatabaseStatement addPicture(*database,
        "INSERT INTO pictures (digest, bytes) VALUES (?, ?) "
        "ON CONFLICT (digest) DO UPDATE SET bytes = excluded.bytes WHERE bytes <> excluded.bytes");
    for (const auto &[digest, bytes] : pictures) {
        (void)addPicture.start().with(QByteArrayView(digest.data(), qsizetype(digest.size()))).with(bytes).run();
    }
    write(*database, changes);
    tidy(*database);
    (void)database->run(database->hasFailed() ? "ROLLBACK" : "COMMIT");
    (void)database->run("PRAGMA incremental_vacuum");
    noteDamage(*database);
}

namespace {

/// The digest with which a folder's entry is stored.
QByteArray checkOf(QByteArrayView volume, QByteArrayView folder, QByteArrayView files)
{
    return Digest().add(volume).add(folder).add(files).finish().first(checkBytes);
}

constexpr const char *findFolder = "SELECT id, seen, files, digest FROM folders WHERE volume = ? AND path = ?";

/// The entry that the statement has come to; absent where it is not what was stored.
std::optional<RememberedFolder> entryAt(
    const DatabaseStatement &found, const QByteArray &volume, const QByteArray &folder)
{
    const QByteArrayView files = found.bytes(2);
    return found.bytes(3) == checkOf(volume, folder, files) ? RememberedFolder::decoded(files) : std::nullopt;
}

std::int64_t dayOf(std::chrono::system_clock::time_point time)
{
    return std::chrono::duration_cast<std::chrono::days>(time.time_since_epoch()).count();
}

} // namespace

void ReadingCache::write(Database &database, const std::map<Place, Change> &changes) const
{
    DatabaseStatement find(database, findFolder);
    DatabaseStatement add(database,
        "INSERT INTO folders (volume, path, seen, files, digest) VALUES (?, ?, ?, ?, ?) "
        "ON CONFLICT (volume, path) DO UPDATE SET seen = excluded.seen, files = excluded.files, "
        "digest = excluded.digest RETURNING id");
    DatabaseStatement forget(database, "DELETE FROM uses WHERE folder = ?");
    DatabaseStatement use(database, "INSERT OR IGNORE INTO uses VALUES (?, ?)");
    for (const auto &[place, change] : changes) {
        if (database.hasFailed()) {
            return;
        }
        RememberedFolder folder;
        if (find.start().with(place.volume).with(place.folder).next()) {
            folder = entryAt(find, place.volume, place.folder).value_or(RememberedFolder());
        }
        find.start();
        for (const std::string &name : change.gone) {
            folder.files.erase(name);
        }
        for (const auto &[name, file] : change.now.files) {
            folder.files.insert_or_assign(name, file);
        }
        if (change.isPictureList) {
            folder.stamp = change.now.stamp;
            folder.pictures = change.now.pictures;
        }
        const QByteArray files = folder.encoded();
        const QByteArray digest = checkOf(place.volume, place.folder, files);
        add.start().with(place.volume).with(place.folder).with(dayOf(m_clock())).with(files).with(digest);
        const std::int64_t number = add.next() ? add.number(0) : 0;
        add.start();
        (void)forget.start().with(number).run();
        for (const auto &[name, file] : folder.files) {
            if (!file.picture.isEmpty()) {
                (void)use.start().with(number).with(file.picture).run();
            }
        }
    }
}

/// Drops what nobody has asked for since long, and pictures that no file has any more.
void ReadingCache::tidy(Database &database) const
{
    DatabaseStatement folders(database, "DELETE FROM folders WHERE seen < ?");
    (void)folders.start().with(dayOf(m_clock()) - forgottenAfter).run();
    (void)database.run("DELETE FROM uses WHERE folder NOT IN (SELECT id FROM folders)");
    (void)database.run("DELETE FROM pictures WHERE digest NOT IN (SELECT picture FROM uses)");
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

struct ReadingCache::Reader::Connection {
    explicit Connection(std::unique_ptr<Database> opened)
        : database(std::move(opened))
    {
    }

    std::unique_ptr<Database> database;
    DatabaseStatement folder {*database, findFolder};
    DatabaseStatement picture {*database, "SELECT bytes FROM pictures WHERE digest = ?"};
};

ReadingCache::Reader::Reader(ReadingCache &cache)
    : m_cache(cache)
{
    if (std::unique_ptr<Database> database = cache.open(readersPatience)) {
        m_connection = std::make_unique<Connection>(std::move(database));
    }
}

ReadingCache::Reader::~Reader()
{
    leave();
    if (m_connection) {
        m_cache.noteDamage(*m_connection->database);
    }
}

void ReadingCache::Reader::enter(const std::filesystem::path &folder)
{
    leave();
    m_folder = folder;
    m_stamp = FileStamp::ofFolder(folder);
    if (m_stamp) {
        m_place = m_cache.placeOf(folder.native(), m_stamp->volume);
        load();
    }
}

void ReadingCache::Reader::load()
{
    if (!m_connection || m_connection->database->hasFailed()) {
        return;
    }
    DatabaseStatement &found = m_connection->folder;
    if (found.start().with(m_place.volume).with(m_place.folder).next()) {
        m_known = entryAt(found, m_place.volume, m_place.folder).value_or(RememberedFolder());
        m_change.isSeen = std::abs(dayOf(m_cache.m_clock()) - found.number(1)) >= seenEvery;
    }
    found.start(); // one that is not at its end keeps writers out
}

/// Hands over what has changed. Of the files that nobody has asked for some may be gone.
void ReadingCache::Reader::leave()
{
    for (const auto &[name, file] : m_known.files) {
        if (!m_asked.contains(name) && !FileStamp::of(m_folder / name)) {
            m_change.gone.push_back(name);
        }
    }
    if (m_change.isPictureList || m_change.isSeen || !m_change.now.files.empty() || !m_change.gone.empty()) {
        m_cache.take(m_place, std::exchange(m_change, {}), m_newPictures);
    }
    m_newPictures.clear();
    m_asked.clear();
    m_known = {};
    m_stamp.reset();
}

FileStamp ReadingCache::Reader::comparable(FileStamp stamp) const
{
    stamp.volume = 0;
    stamp.inode = m_place.hasInodes ? stamp.inode : 0;
    stamp.changed = m_place.hasInodes ? stamp.changed : 0;
    return stamp;
}

bool ReadingCache::Reader::isSettled(const FileStamp &stamp) const
{
    const std::chrono::nanoseconds now = m_cache.m_clock().time_since_epoch();
    const auto isYoung = [&](std::int64_t time) { return std::abs(now.count() - time) < youngest.count(); };
    return !isYoung(stamp.modified) && !(m_place.hasInodes && isYoung(stamp.changed));
}

std::optional<QByteArray> ReadingCache::Reader::picture(const QByteArray &digest)
{
    if (std::optional<QByteArray> held = m_cache.pictureHeld(digest)) {
        return held;
    }
    DatabaseStatement &found = m_connection->picture;
    const bool isThere = found.start().with(digest).next();
    const QByteArray bytes = isThere ? found.bytes(0).toByteArray() : QByteArray();
    found.start();
    return isThere && digestOf(bytes) == digest ? std::optional(m_cache.holdPicture(digest, bytes)) : std::nullopt;
}

std::optional<FileFacts> ReadingCache::Reader::find(const std::string &name, const FileStamp &stamp)
{
    m_asked.emplace(name, true);
    const auto found = m_known.files.find(name);
    if (found == m_known.files.end() || !m_stamp || stamp.volume != m_stamp->volume
        || found->second.stamp != comparable(stamp)) {
        return std::nullopt;
    }
    FileFacts facts = found->second.facts;
    if (!found->second.picture.isEmpty()) {
        facts.picture = picture(found->second.picture);
        if (!facts.picture) {
            return std::nullopt;
        }
    }
    return facts;
}

void ReadingCache::Reader::remember(const std::string &name, const FileStamp &stamp, const FileFacts &facts)
{
    const QMap<QString, QString> &tags = facts.info.tags;
    const qsizetype length = std::accumulate(tags.keyValueBegin(), tags.keyValueEnd(), qsizetype(0),
        [](qsizetype sum, const auto &tag) { return sum + tag.first.size() + 2 * tag.second.size(); });
    if (!m_stamp || stamp.volume != m_stamp->volume || length > maxTags || !isSettled(stamp)
        || FileStamp::of(m_folder / name) != stamp) {
        return;
    }
    RememberedFile file {.stamp = comparable(stamp), .facts = facts, .picture = {}};
    file.facts.picture.reset();
    if (facts.picture) {
        if (m_lastPicture.constData() != facts.picture->constData()) {
            m_lastPicture = *facts.picture;
            m_lastDigest = digestOf(m_lastPicture);
        }
        file.picture = m_lastDigest;
        m_newPictures.try_emplace(m_lastDigest.toStdString(), m_lastPicture);
    }
    m_change.now.files.insert_or_assign(name, std::move(file));
}

std::optional<std::vector<std::string>> ReadingCache::Reader::pictures() const
{
    // On FAT other systems leave a folder's time as it is.
    const bool isKnown = m_stamp && m_place.hasInodes && m_known.stamp == comparable(*m_stamp);
    return isKnown ? std::optional(m_known.pictures) : std::nullopt;
}

void ReadingCache::Reader::rememberPictures(std::vector<std::string> names)
{
    if (m_stamp && m_place.hasInodes && isSettled(*m_stamp) && FileStamp::ofFolder(m_folder) == m_stamp) {
        m_change.isPictureList = true;
        m_change.now.stamp = comparable(*m_stamp);
        m_change.now.pictures = std::move(names);
    }
}
