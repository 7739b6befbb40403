// The cache of what files said: it gives what reading them would give, whatever happens to them or to it.
#include "library/ReadingCache.h"
#include "library/TrackReader.h"

#include "platform/files/Database.h"
#include "platform/files/Files.h"
#include "platform/tasks/Background.h"

#include "support/FlacBytes.h"
#include "support/Testing.h"

#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <random>
#include <thread>

namespace {

using namespace std::chrono_literals;

std::string flacNamed(const std::string &title, const std::string &picture = {})
{
    return "fLaC" + FlacBytes::block(4, FlacBytes::comments({"TITLE=" + title, "ARTIST=Ærø", "DISCNUMBER=2"}))
        + (picture.empty() ? "" : FlacBytes::block(6, FlacBytes::picture(3, picture))) + FlacBytes::block(1, "", true);
}

std::chrono::system_clock::time_point afterAWhile()
{
    return std::chrono::system_clock::now() + 10s;
}

struct Collection {
    Collection()
    {
        for (const char *name : {"a/1.flac", "a/2.flac", "b/1.flac", "b/CD 2/01 x.mp3"}) {
            folder.write(fs::path("music") / name, flacNamed(name, name[0] == 'a' ? "picture" : ""));
        }
        folder.write("music/b/cover.jpg", "cover");
    }
    [[nodiscard]] std::vector<Track> read(const std::shared_ptr<ReadingCache> &with) const
    {
        std::vector<Track> tracks = readTracks(
            {.urls = {folder / "music"}, .known = {}, .artworkOverrides = {}, .artwork = {}, .cache = with},
            [](int, int) { }).tracks;
        for (Track &track : tracks) {
            track.id = {}; // which is another each time
        }
        return tracks;
    }
    /// Reads with the cache, and has it written.
    std::vector<Track> readAndKeep() const
    {
        const auto cache = std::make_shared<ReadingCache>(file, afterAWhile);
        std::vector<Track> tracks = read(cache);
        cache->flush();
        EXPECT_TRUE(BackgroundJobs::drain(10s));
        return tracks;
    }
    /// How many files of these folders a reading opens.
    [[nodiscard]] int opened(const std::shared_ptr<ReadingCache> &with) const
    {
        const Files::Descriptor watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        for (const char *name : {"music/a", "music/b", "music/b/CD 2"}) {
            EXPECT_GE(::inotify_add_watch(watch.get(), (folder / name).c_str(), IN_OPEN), 0);
        }
        (void)read(with);
        EXPECT_TRUE(BackgroundJobs::drain(10s));
        int files = 0;
        alignas(inotify_event) std::array<char, 16384> events {};
        for (ssize_t size = 0; (size = ::read(watch.get(), events.data(), events.size())) > 0;) {
            for (ssize_t at = 0; at < size;) {
                const auto *event = reinterpret_cast<const inotify_event *>(events.data() + at);
                files += (event->mask & IN_ISDIR) == 0 ? 1 : 0;
                at += ssize_t(sizeof *event + event->len);
            }
        }
        return files;
    }

    TemporaryFolder folder;
    fs::path file = folder / "cache/Marlune/library.sqlite";
};

} // namespace

TEST(ReadingCache, opensNoFileAgainThatHasNotChanged)
{
    const Collection music;
    const std::vector<Track> fresh = music.read(nullptr);
    EXPECT_EQ(music.readAndKeep(), fresh);
    const auto cache = std::make_shared<ReadingCache>(music.file, afterAWhile);
    EXPECT_EQ(music.opened(cache), 0);
    EXPECT_EQ(music.read(cache), fresh);
    EXPECT_LT(fs::file_size(music.file), 64'000U);
    // A file is opened that is another one now; one that has changed just now is not remembered.
    std::this_thread::sleep_for(20ms);
    music.folder.write("music/a/1.flac", flacNamed("other"));
    EXPECT_EQ(music.opened(std::make_shared<ReadingCache>(music.file)), 1);
    EXPECT_EQ(music.opened(std::make_shared<ReadingCache>(music.file)), 1);
    EXPECT_EQ(music.opened(cache), 1);
    EXPECT_EQ(music.opened(cache), 0);
    // Files that have gone are dropped, and pictures with the last that had them; folders when nobody asks for long.
    fs::remove(music.folder / "music/a/2.flac");
    (void)music.readAndKeep();
    EXPECT_EQ(Database::open(music.file)->number("SELECT count(*) FROM pictures", -1), 1);
    fs::remove_all(music.folder / "music/b/CD 2");
    const auto later = std::make_shared<ReadingCache>(music.file, [] { return afterAWhile() + 24h * 100; });
    (void)music.read(later);
    later->flush();
    EXPECT_EQ(Database::open(music.file)->number("SELECT count(*) FROM folders", -1), 2);
}

TEST(ReadingCache, givesWhatAFreshReadingGivesWhateverChanges)
{
    const Collection music;
    std::mt19937 random(11);
    const std::array<fs::path, 4> places {"music/a/1.flac", "music/a/2.flac", "music/b/1.flac", "music/b/3.flac"};
    const auto some = [&] { return music.folder / places[random() % places.size()]; };
    const auto write = [&](const fs::path &file, const std::string &bytes) {
        (void)music.folder.write(file.lexically_relative(music.folder.path()), bytes);
    };
    std::error_code ignored; // where there is nothing of the name
    for (int round = 0; round < 150; ++round) {
        (void)music.readAndKeep();
        std::this_thread::sleep_for(12ms); // a clock of the kernel goes on in steps
        const fs::path file = some();
        const fs::path other = some();
        const fs::path parking = music.folder / "parking";
        const std::string number = std::to_string(round % 10); // another text of the same length
        switch (random() % 11) {
        case 0:
            write(file, flacNamed(number, number));
            break;
        case 1: // as large as before, and as old
            if (fs::exists(file)) {
                const auto time = fs::last_write_time(file);
                write(file, flacNamed("title" + number));
                fs::last_write_time(file, time);
            }
            break;
        case 2:
            fs::last_write_time(file, fs::file_time_type::clock::now(), ignored);
            break;
        case 3:
            write(parking, flacNamed("renamed" + number));
            fs::rename(parking, file, ignored);
            break;
        case 4:
            write(file.parent_path() / (random() % 2 != 0 ? "cover.jpg" : "FOLDER.PNG"), "cover" + number);
            break;
        case 5:
            fs::remove(file.parent_path() / (random() % 2 != 0 ? "cover.jpg" : "FOLDER.PNG"));
            break;
        case 6:
            write(fs::path(file).replace_extension("jpg"), "sidecar" + number);
            break;
        case 7:
            fs::remove(fs::path(file).replace_extension("jpg"));
            break;
        case 8:
            fs::rename(music.folder / "music/a", parking, ignored);
            fs::rename(music.folder / "music/b", music.folder / "music/a", ignored);
            fs::rename(parking, music.folder / "music/b", ignored);
            break;
        case 9:
            fs::rename(file, file.parent_path() / "1.FLAC", ignored);
            break;
        default:
            fs::rename(file, parking, ignored);
            fs::rename(other, file, ignored);
            fs::rename(parking, other, ignored);
        }
        fs::remove(parking, ignored);
        ASSERT_EQ(music.readAndKeep(), music.read(nullptr)) << "round " << round;
    }
}

TEST(ReadingCache, isAsGoodAsNoneWhereItIsHarmed)
{
    const Collection music;
    const std::vector<Track> fresh = music.read(nullptr);
    (void)music.readAndKeep();
    const fs::path good = music.folder / "good";
    fs::copy_file(music.file, good);
    const auto harmed = [&](const std::string &how) {
        EXPECT_EQ(music.readAndKeep(), fresh) << how;
        EXPECT_EQ(music.readAndKeep(), fresh) << how;
        EXPECT_EQ(music.opened(std::make_shared<ReadingCache>(music.file, afterAWhile)), 0) << how;
        fs::copy_file(good, music.file, fs::copy_options::overwrite_existing);
    };
    const auto size = std::int64_t(fs::file_size(good));
    for (std::int64_t end = 0; end < size; end += 4096) {
        fs::resize_file(music.file, std::uintmax_t(end));
        harmed("cut at " + std::to_string(end));
    }
    std::mt19937 random(5);
    for (int round = 0; round < 60; ++round) {
        std::fstream stream(music.file, std::ios::in | std::ios::out | std::ios::binary);
        for (int count = 0; count < 8; ++count) {
            stream.seekp(std::int64_t(random()) % size);
            stream.put(char(random()));
        }
        stream.close();
        harmed("bytes, round " + std::to_string(round));
    }
    for (const char *column :
        {"folders SET volume", "folders SET path", "folders SET seen", "folders SET files", "folders SET digest",
            "pictures SET digest", "pictures SET bytes", "uses SET picture", "uses SET folder"}) {
        for (const char *value :
            {"zeroblob(0)", "randomblob(40)", "'text'", "-9223372036854775808", "1e300", "id + 1"}) {
            const std::string change = std::string("UPDATE OR IGNORE ") + column + " = " + value;
            (void)Database::open(music.file)->run(change.c_str());
            harmed(change);
        }
    }
    for (const char *change : {"PRAGMA user_version = 0", "PRAGMA user_version = 2", "DROP TABLE folders",
             "UPDATE folders SET files = (SELECT files FROM folders ORDER BY id DESC)",
             "UPDATE pictures SET bytes = bytes || x'00'", "ALTER TABLE folders RENAME COLUMN files TO other",
             "CREATE TRIGGER t AFTER UPDATE ON folders BEGIN DELETE FROM pictures; END"}) {
        EXPECT_TRUE(Database::open(music.file)->run(change)) << change;
        harmed(change);
    }
    fs::resize_file(music.file, 0);
    music.folder.write("cache/Marlune/library.sqlite",
        "This is no database, but a text of more than a hundred bytes, "
        "so that its head is looked at as if it were one at all.");
    harmed("a text");
    EXPECT_TRUE(fs::exists(music.file.native() + ".damaged"));
    fs::remove(music.file);
    harmed("gone");
}

TEST(ReadingCache, isAsGoodAsNoneWhereItCannotBeUsed)
{
    const Collection music;
    const std::vector<Track> fresh = music.read(nullptr);
    (void)music.readAndKeep();
    const auto cache = std::make_shared<ReadingCache>(music.file, afterAWhile);
    {
        const std::unique_ptr<Database> other = Database::open(music.file);
        ASSERT_TRUE(other->run("BEGIN EXCLUSIVE"));
        EXPECT_EQ(music.read(cache), fresh);
        EXPECT_TRUE(BackgroundJobs::drain(60s));
    }
    EXPECT_EQ(music.opened(cache), 0);
    {
        ReadingCache::Reader reader(*cache); // it is deleted under its hands
        fs::remove(music.file);
        reader.enter(music.folder / "music/a");
        EXPECT_TRUE(reader.find("1.flac", *FileStamp::of(music.folder / "music/a/1.flac")));
    }
    EXPECT_EQ(music.readAndKeep(), fresh);
    EXPECT_EQ(music.opened(cache), 0);
    for (const char *place : {"cache/file/Marlune/library.sqlite", "music/a", "/proc/none/library.sqlite"}) {
        music.folder.write("cache/file", "no folder");
        const auto nowhere = std::make_shared<ReadingCache>(music.folder / place, afterAWhile);
        EXPECT_EQ(music.read(nowhere), fresh) << place;
        nowhere->flush();
        EXPECT_TRUE(BackgroundJobs::drain(10s));
    }
    fs::remove(music.file); // a full disk
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    for (const rlim_t room : {0U, 1000U, 9000U, 30'000U}) {
        const rlimit little {room, before.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
        EXPECT_EQ(music.readAndKeep(), fresh) << room;
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    }
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(music.readAndKeep(), fresh);
    EXPECT_EQ(music.opened(cache), 0);
}

TEST(ReadingCache, survivesItsProgramAndTwoAtOnce)
{
    const Collection music;
    const std::vector<Track> fresh = music.read(nullptr);
    for (int round = 0; round < 30; ++round) {
        fs::remove(music.file);
        const pid_t child = ::fork();
        if (child == 0) {
            const auto cache = std::make_shared<ReadingCache>(music.file, afterAWhile);
            for (;;) { // two writers: this one, and below
                (void)music.read(cache);
                cache->flush();
                std::error_code ignored;
                fs::last_write_time(music.folder / "music/a/1.flac", fs::file_time_type::clock::now(), ignored);
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(700 * round));
        if (round % 2 != 0) {
            EXPECT_EQ(music.readAndKeep(), fresh);
        }
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        EXPECT_EQ(music.readAndKeep(), fresh);
        EXPECT_EQ(music.opened(std::make_shared<ReadingCache>(music.file, afterAWhile)), 0) << round;
    }
}
