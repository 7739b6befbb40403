// Every job that writes, while the n-th disk call fails or another program changes the world there, for each n: nothing
// outside the device is touched, nothing on it is lost without a copy, and the user reads what happened.
#include "themes/ThemeInstall.h"

#include "artwork/ArtworkInstall.h"

#include "storage/Backup.h"
#include "storage/MacMetadata.h"
#include "storage/Playlist.h"
#include "storage/Transfer.h"

#include "support/AnotherDisk.h"
#include "support/Archives.h"
#include "support/FailingDisk.h"
#include "support/Testing.h"

#include <set>

namespace {

using Fault = FailingDisk::Fault;
using Contents = std::set<std::string>;
using FileMap = std::map<std::string, std::string>;

const std::string magic("\0\5\x16\7", 4);

/// The files of a device, each with bytes of its own; another one has the same names.
void fill(const fs::path &root, const std::string &owner)
{
    for (const char *name :
        {".rockbox/rockbox-info.txt", ".rockbox/config.cfg", ".rockbox/themes/Dawn.cfg", ".rockbox/wps/Dawn.wps",
            ".rockbox/wps/Dawn/other.bmp", "Music/Artist/Album/1.mp3", "Music/Artist/Album/cover.jpeg",
            "Music/CD2/a.mp3", "Music/Artist/Album/._1.mp3", "Music/Artist/Album/._cover.jpeg", "Playlists/old.m3u8"}) {
        fs::create_directories((root / name).parent_path());
        const bool isCompanion = fs::path(name).filename().native().starts_with("._");
        std::ofstream(root / name) << (isCompanion ? magic : "") << owner << name;
    }
}

const std::string companion = magic + "device Music/Artist/Album/._1.mp3";

/// The files below a folder, without what a dead disk lets nobody remove, and without the moment of a backup.
FileMap filesLeft(const fs::path &folder, Fault fault = Fault::Refused)
{
    FileMap files = !fs::is_symlink(folder) && fs::exists(folder) ? filesBelow(folder) : FileMap();
    for (auto &[name, bytes] : files) {
        EXPECT_TRUE(fault == Fault::Dead || name.find(".partial") == std::string::npos) << name;
        bytes = name.ends_with("README.txt") ? "" : bytes;
    }
    std::erase_if(files, [](const auto &file) { return file.first.find(".partial") != std::string::npos; });
    return files;
}

Contents contentsBelow(const fs::path &folder, Fault fault = Fault::Refused)
{
    Contents contents;
    for (const auto &[name, bytes] : filesLeft(folder, fault)) {
        contents.insert(bytes);
    }
    return contents;
}

/// All items by path, with the bytes of the files.
std::map<std::string, std::string> itemsBelow(const fs::path &folder)
{
    std::map<std::string, std::string> items = filesBelow(folder);
    for (const auto &item : fs::recursive_directory_iterator(folder)) {
        items.try_emplace(item.path().lexically_relative(folder), "no file");
    }
    return items;
}

/// A device, a place outside that looks like one, and a computer. Folders moved away stay on the device's disk.
struct World {
    TemporaryFolder folder {quickFolder()};
    fs::path root = folder / "IPOD";
    fs::path outside = folder / "outside";
    fs::path backups = folder / "Backups";
    fs::path album = root / "Music/Artist/Album";

    World()
    {
        fill(root, "device ");
        fill(outside, "outside ");
        for (const char *name : {"new", "1"}) { // the second is another song than the device's
            folder.write(std::string("Computer/") + name + ".mp3", name + std::string(" music"));
        }
        fs::create_directories(backups);
        fs::create_directories(folder / "moved");
        fs::create_directories(folder / "tmp");
        ::setenv("TMPDIR", (folder / "tmp").c_str(), 1);
    }
    [[nodiscard]] Storage::DeviceAnchor anchor() const { return Storage::DeviceAnchor(root); }
    [[nodiscard]] Contents onDevice() const
    {
        Contents contents = contentsBelow(root);
        contents.merge(contentsBelow(folder / "moved"));
        return contents;
    }
};

struct Job {
    std::string name;
    std::function<void(const World &)> run;
    std::string made; ///< when it has succeeded: on the device, or on the computer where that is all that it makes
    std::string taken = {}; ///< from the device by then
    bool allOrNothing = false;
    bool isBackup = false;
};

std::vector<Job> jobs()
{
    return {{"theme",
                [](const World &world) {
                    (void)Storage::installTheme(archive("zip-9.zip"), world.root, world.backups / "new");
                },
                "wps: /.rockbox/wps/Dawn.wps\n", "device .rockbox/wps/Dawn.wps", true},
        {"cover",
            [](const World &world) {
                const fs::path tracks[] = {world.album / "1.mp3", world.root / "Music/CD2/a.mp3"};
                Artwork::install("new cover", tracks, world.anchor(), world.backups);
            },
            "new cover", "device Music/Artist/Album/cover.jpeg", true},
        {"transfer",
            [](const World &world) {
                const QString artist = u"Artist"_s;
                const QString album = u"Album"_s;
                const TransferFile files[] = {{world.folder / "Computer/new.mp3", artist, album, std::nullopt},
                    {world.folder / "Computer/1.mp3", artist, album, std::nullopt},
                    {world.folder / "Computer/new.mp3", artist, album, u"CD 1"_s}};
                (void)Storage::transfer(files, world.anchor(), [](int, int) { });
            },
            "new music"},
        {"playlist",
            [](const World &world) {
                const fs::path tracks[] = {world.album / "1.mp3"};
                (void)Storage::playlist(u"new"_s, tracks, world.root);
            },
            "#EXTM3U\n/Music/Artist/Album/1.mp3\n"},
        {"cleanup", [](const World &world) { (void)Storage::cleanupMacMetadata(world.anchor(), world.backups); },
            companion, companion, false, true},
        {"backup", [](const World &world) { (void)Storage::backup(world.anchor(), world.backups / "new"); },
            "device .rockbox/config.cfg", {}, false, true}};
}

/// What the user, or a program of theirs, destroyed and made.
struct Edits {
    Contents taken;
    Contents brought;
};

/// Something that happens once, and what some of the jobs must say of it.
struct Change {
    std::string name;
    std::function<Edits(const World &)> happen;
    std::string jobs; ///< that it concerns
    std::set<std::string> messages;
    Fault when = Fault::Event;
};

const std::string anotherDisk = "W miejscu iPoda jest teraz inny dysk lub folder. Podłącz iPoda ponownie.";
const std::string everyJob = "theme cover transfer playlist backup cleanup";

/// An item is moved away.
Change gone(const std::string &place, const std::string &jobs, const std::set<std::string> &messages)
{
    const auto happen = [place](const World &world) -> Edits {
        fs::rename(world.root / place, world.folder / "moved/away");
        return {};
    };
    return {place + " gone", happen, jobs, messages};
}

/// The same, and its name leads to the one outside.
Change linked(const std::string &place, const std::string &jobs, const std::set<std::string> &messages)
{
    const auto happen = [place](const World &world) -> Edits {
        const fs::path link = place.empty() ? world.root : world.root / place;
        fs::rename(link, world.folder / "moved/away");
        fs::create_symlink(place.empty() ? world.outside : world.outside / place, link);
        return {};
    };
    return {"a link at " + place, happen, jobs, messages};
}

/// Another folder with a device's files comes to the device's place.
Change exchanged()
{
    const auto happen = [](const World &world) -> Edits {
        fs::rename(world.root, world.folder / "moved/away");
        fs::copy(world.outside, world.root, fs::copy_options::recursive);
        return {{}, contentsBelow(world.outside)};
    };
    return {"another folder", happen, everyJob, {anotherDisk}};
}

/// A file gets other bytes, in place or by another file; one that was not there appears. An edit happens behind a call:
/// what happens between the last look and the step right after it cannot be seen by anybody.
Change edited(const std::string &place, bool inPlace, const std::string &jobs, const std::set<std::string> &messages,
    Fault when = Fault::EventAfter)
{
    const auto happen = [place, inPlace](const World &world) -> Edits {
        const fs::path file = world.root / place;
        const Contents old = fs::exists(file) ? Contents {fileBytes(file)} : Contents();
        std::ofstream(inPlace ? file : world.folder / "edited") << "edited";
        inPlace ? void() : fs::rename(world.folder / "edited", file);
        return {old, {"edited"}};
    };
    return {(inPlace ? "an edit of " : "another file at ") + place, happen, jobs, messages, when};
}

/// Two at once: the second stops the job, which must not take the first for its own work.
Change both(const Change &edit, const Change &stop, const std::string &jobs, const std::set<std::string> &messages)
{
    const auto happen = [edit, stop](const World &world) -> Edits {
        const Edits edits = edit.happen(world);
        (void)stop.happen(world);
        return edits;
    };
    return {edit.name + ", " + stop.name, happen, jobs, messages, Fault::EventAfter};
}

bool holds(const Contents &all, const Contents &some)
{
    return std::includes(all.begin(), all.end(), some.begin(), some.end());
}

/// Compares what is left with what was there.
void check(const World &world, const Job &job, const Contents &before, const Edits &edits, const std::string &failure)
{
    const Contents device = world.onDevice();
    const Contents computer = contentsBelow(world.backups);
    Contents everywhere = computer;
    everywhere.insert(device.begin(), device.end());
    Contents expected = before;
    std::erase_if(expected, [&](const std::string &bytes) { return edits.taken.contains(bytes); });
    expected.insert(edits.brought.begin(), edits.brought.end());
    EXPECT_TRUE(holds(everywhere, expected)) << "lost";
    if (failure.empty()) {
        EXPECT_TRUE((job.isBackup ? computer : device).contains(job.made) || edits.taken.contains(job.made));
        EXPECT_FALSE(contentsBelow(world.root).contains(job.taken));
    } else if (job.allOrNothing && failure.find("\n\nKopia: ") == std::string::npos) {
        EXPECT_EQ(device, expected);
    }
    expected.merge(contentsBelow(world.folder / "Computer"));
    expected.insert(job.made);
    EXPECT_TRUE(job.allOrNothing || holds(expected, device)) << "half a file";
    EXPECT_TRUE(fs::is_empty(world.folder / "tmp"));
}

/// Has each job run with the change at the n-th call, for each n. `uncover` is called before the device is looked at.
/// Returns what the jobs said.
std::set<std::string> tryAll(
    const Change &change, const std::function<void(const World &)> &uncover = [](const World &) { })
{
    std::set<std::string> seen;
    for (const Job &job : jobs()) {
        bool reached = change.jobs.find(job.name) != std::string::npos;
        for (int call = 1; reached; ++call) {
            const World world;
            const Contents before = world.onDevice();
            const auto outside = itemsBelow(world.outside);
            Edits edits;
            std::string failure;
            {
                const FailingDisk disk(call, EIO, change.when, [&] { edits = change.happen(world); });
                failure = failureOf([&] { job.run(world); });
                reached = FailingDisk::reached();
            }
            SCOPED_TRACE(change.name + ", " + job.name + ", call " + std::to_string(call) + ": " + failure);
            uncover(world);
            check(world, job, before, edits, failure);
            EXPECT_EQ(itemsBelow(world.outside), outside);
            EXPECT_TRUE(reached || failure.empty());
            if (testing::Test::HasFailure()) {
                return seen; // the next call would fail alike
            }
            seen.insert(failure.substr(0, failure.find("\n\nKopia: ")));
        }
    }
    EXPECT_TRUE(holds(seen, change.messages)) << change.name << testing::PrintToString(seen);
    return seen;
}

/// Holds what a job has left where a call failed against what it found, and against a world where none failed.
void checkFault(
    const World &world, const Job &job, Fault fault, const std::string &failure, FileMap before, const World &done)
{
    const FileMap after = filesBelow(done.root);
    const FileMap files = filesLeft(world.root, fault);
    const FileMap copy = filesLeft(world.backups / "new", fault);
    EXPECT_TRUE(copy.empty() || copy == filesLeft(done.backups / "new", fault)) << "half a backup";
    const Contents saved = contentsBelow(world.backups, fault);
    const auto has = [](const FileMap &all, const auto &file) {
        return all.contains(file.first) && all.at(file.first) == file.second;
    };
    for (const auto &file : files) {
        EXPECT_TRUE(has(before, file) || has(after, file)) << file.first;
    }
    for (const auto &file : before) {
        EXPECT_TRUE(has(files, file) || saved.contains(file.second)) << file.first << " is lost";
    }
    EXPECT_TRUE(fault == Fault::Dead || fs::is_empty(world.folder / "tmp"));
    if (failure.empty()) {
        EXPECT_EQ(files, after);
    } else if (!job.allOrNothing) { // it goes on where it stopped
        files == after ? void() : job.run(world);
        EXPECT_EQ(filesLeft(world.root, fault), after);
    } else {
        std::erase_if(before, [&](const auto &file) { // a companion is not put back
            return file.second.starts_with(magic) && !files.contains(file.first);
        });
        const bool namesCopy = failure.find("\n\nKopia: " + world.backups.string()) != std::string::npos;
        EXPECT_TRUE(files == before || (fault == Fault::Dead && namesCopy));
    }
}

const std::string rootIsLink = "Folder urządzenia nie może być dowiązaniem symbolicznym.";
const std::string linkOnTheWay = "Ścieżka zawiera dowiązanie: ";
const std::string linkInBackup = "Paczka zawiera dowiązanie symboliczne.";
const std::string linkAtFile = "Docelowy zasób jest dowiązaniem.";
const std::string noDevice = "Ten folder nie zawiera katalogu .rockbox.";

} // namespace

TEST(ChangingWorld, followsNothingThatBecomesALink)
{
    for (const Change &change : {exchanged(), linked("", everyJob, {rootIsLink, anotherDisk}),
             linked(".rockbox", everyJob, {rootIsLink, linkOnTheWay + ".rockbox"}),
             linked(".rockbox/themes", "theme backup", {linkInBackup, linkOnTheWay + "themes"}),
             linked(".rockbox/wps/Dawn", "theme", {linkInBackup, linkOnTheWay + "Dawn"}),
             linked(".rockbox/wps/Dawn.wps", "theme", {linkInBackup, linkAtFile}),
             linked("Music/Artist", "cover transfer cleanup", {linkOnTheWay + "Artist"}),
             linked("Music/Artist/Album", "cover transfer cleanup", {linkOnTheWay + "Album"}),
             linked("Music/Artist/Album/cover.jpeg", "cover", {"Too many levels of symbolic links: cover.jpeg"}),
             linked("Playlists", "playlist", {linkOnTheWay + "Playlists"}), gone(".rockbox", everyJob, {noDevice})}) {
        tryAll(change);
    }
}

TEST(ChangingWorld, losesNoFileOfTheUsersThatIsEditedOrAppears)
{
    const std::string changed = "Plik na iPodzie zmienił się po zrobieniu kopii: ";
    const std::string album = "Music/Artist/Album/";
    for (const bool inPlace : {true, false}) {
        const Change theme = edited(".rockbox/themes/Dawn.cfg", inPlace, "theme backup", {changed + "Dawn.cfg"});
        const Change cover = edited(album + "cover.jpeg", inPlace, "cover", {changed + "cover.jpeg"});
        for (const Change &change : {theme, cover,
                 edited(".rockbox/wps/Dawn/back.bmp", inPlace, "theme",
                     {"Na iPodzie pojawił się plik bez kopii: back.bmp", "File exists: back.bmp"}, Fault::Event),
                 edited(album + "new.mp3", inPlace, "transfer", {"File exists: new.mp3"}, Fault::Event),
                 edited("Playlists/new.m3u8", inPlace, "playlist",
                     {"Playlista o tej nazwie już istnieje. Wybierz inną nazwę."}, Fault::Event),
                 edited(album + "._1.mp3", inPlace, "cleanup", {}),
                 both(cover, gone(".rockbox", "", {}), "cover", {changed + "cover.jpeg", noDevice}),
                 both(theme, linked(".rockbox/wps/Dawn.wps", "", {}), "theme",
                     {changed + "Dawn.cfg", linkInBackup, linkAtFile})}) {
            tryAll(change);
        }
    }
}

TEST(ChangingWorld, leavesAnotherDiskAtTheSamePlaceAlone)
{
    if (!AnotherDisk::available()) {
        GTEST_SKIP() << "no mount namespace here";
    }
    std::optional<AnotherDisk> disk;
    std::map<std::string, std::string> second;
    const auto exchange = [&](const World &world) -> Edits {
        disk.emplace(world.root);
        EXPECT_TRUE(disk->mounted());
        fill(world.root, "second ");
        second = itemsBelow(world.root);
        return {};
    };
    const auto said = tryAll({"another disk", exchange, everyJob, {}}, [&](const World &world) {
        if (disk) {
            EXPECT_EQ(itemsBelow(world.root), second);
            disk.reset();
        }
    });
    EXPECT_EQ(said, (std::set<std::string> {"", anotherDisk}));
}

TEST(FailingDisk, leavesEachJobDoneOrUndone)
{
    const std::set<std::string> lenient {"theme", "playlist", "backup"}; // a file's time, a name's syncing may fail
    std::set<std::string> seen; // of the theme's install
    for (const Job &job : jobs()) {
        const World done;
        job.run(done);
        for (const Fault fault : {Fault::Refused, Fault::Late, Fault::Dead}) {
            bool reached = true;
            for (int call = 1; reached; ++call) {
                const World world;
                const FileMap before = filesBelow(world.root);
                std::string failure;
                {
                    const FailingDisk disk(call, call % 2 == 0 ? ENOSPC : EIO, fault);
                    failure = failureOf([&] { job.run(world); });
                    reached = FailingDisk::reached();
                }
                SCOPED_TRACE(job.name + ", call " + std::to_string(call) + ": " + failure);
                EXPECT_TRUE(reached != failure.empty() || (reached && lenient.contains(job.name)));
                checkFault(world, job, fault, failure, before, done);
                ASSERT_FALSE(HasFailure()); // the next call would fail alike
                seen.insert(job.name == "theme" ? failure : "");
            }
        }
    }
    EXPECT_TRUE(seen.contains("Na dysku komputera zabrakło miejsca."));
    EXPECT_FALSE(seen.contains("No space left on device"));
}
