// The plain parts of the model: the plan of a transfer, what follows from a discovery of devices, the running work, the
// check for duplicates, the models by their targets.
#include "support/SampleTracks.h"

#include "model/DeviceFinder.h"
#include "model/DuplicateCheck.h"
#include "model/IPodProfile.h"
#include "model/RunningWork.h"
#include "model/StorageUse.h"
#include "model/TransferPlan.h"

#include <gtest/gtest.h>

namespace {

Device deviceAt(const char *root, bool isVolume = true)
{
    Device device;
    device.root = root;
    device.isVolume = isVolume;
    return device;
}

using Selection = DeviceFinder::Outcome::Selection;

struct Discovery {
    const char *name;
    std::vector<const char *> found;
    const char *selected; ///< "" for none
    bool ejecting = false;
    const char *left = ""; ///< meanwhile
    bool chosen = false; ///< meanwhile
    bool repeat = false; ///< asked for meanwhile
    Selection selection = Selection::Keep;
    const char *sole = "";
    bool again = false;
};

} // namespace

TEST(TransferPlan, followsTheWholeLibrary)
{
    const std::vector<Track> library = makeTracks({{"Band/Two/CD1/1.flac", "Two", "Band", 1, 1},
        {"Band/Two/CD2/1.flac", "Two", "Band", 2, 1}, {"Band/One/1.flac", "One", "Band", 0, 1}});
    const Track stranger = makeTrack({"else/where.mp3", "Other", "Somebody"});
    const TransferPlan plan = planTransfer({library[1], stranger, library[2]}, library);
    ASSERT_EQ(plan.files.size(), 3U);
    EXPECT_EQ(plan.files[0].discFolder, u"CD 2"_s); // though the other disc is not sent
    EXPECT_EQ(plan.files[1].artist + plan.files[1].album, u"SomebodyOther"_s);
    EXPECT_FALSE(plan.files[1].discFolder || plan.files[2].discFolder);
    EXPECT_EQ(plan.ids.size(), 3);
}

TEST(TransferPlan, givesEachFoldersAlbumTheFirstCoverThatItsTracksHave)
{
    std::vector<Track> items = makeTracks(
        {{"A/x/1.mp3", "x"}, {"A/x/2.mp3", "x"}, {"A/x/3.mp3", "x"}, {"B/x/1.mp3", "x"}, {"A/bare/1.mp3", "bare"}});
    items[1].artwork = "second";
    items[2].artwork = "third";
    items[3].artwork = "elsewhere";
    const TransferPlan plan = planTransfer(items, items);
    std::map<QByteArray, std::vector<std::size_t>> covers;
    for (const PlannedCover &cover : plan.covers) {
        covers[cover.artwork] = cover.items;
    }
    EXPECT_EQ(covers, (std::map<QByteArray, std::vector<std::size_t>> {{"second", {0, 1, 2}}, {"elsewhere", {3}}}));
    EXPECT_EQ(plan.stages.size(), 3U);
    EXPECT_EQ(planTransfer({items[4]}, items).stages.size(), 2U); // no stage without a cover
    const std::vector<fs::path> arrived {"/m/1", "/m/2"};
    EXPECT_EQ(tracksOf({.album = {}, .artwork = {}, .items = {1, 2}}, arrived), (std::vector {arrived[1]}));
}

TEST(DeviceFinder, decidesWhatBecomesOfTheSelection)
{
    const Discovery rows[] = {
        {.name = "the only one", .found = {"/a"}, .selected = "", .sole = "/a"},
        {.name = "two", .found = {"/a", "/b"}, .selected = ""},
        {.name = "still there", .found = {"/a", "/b"}, .selected = "/b", .selection = Selection::Update},
        {.name = "gone", .found = {"/b"}, .selected = "/a", .selection = Selection::Lost, .sole = "/b"},
        {.name = "on its way out", .found = {}, .selected = "/a", .ejecting = true},
        {.name = "left meanwhile", .found = {"/a"}, .selected = "/a", .left = "/a", .selection = Selection::Lost},
        {.name = "chosen meanwhile", .found = {}, .selected = "/a", .chosen = true, .again = true},
        {.name = "one came meanwhile",
            .found = {"/a"},
            .selected = "/a",
            .repeat = true,
            .selection = Selection::Update,
            .sole = "/a",
            .again = true},
    };
    for (const Discovery &row : rows) {
        DeviceFinder finder;
        ASSERT_TRUE(finder.begin());
        EXPECT_FALSE(finder.begin());
        if (*row.left) {
            finder.onDiskLeft(row.left);
        }
        if (row.chosen) {
            finder.onChoice();
        }
        if (row.repeat) {
            finder.repeatAfterwards();
        }
        std::vector<Device> found;
        for (const char *root : row.found) {
            found.push_back(deviceAt(root));
        }
        const auto selected = *row.selected ? std::optional(deviceAt(row.selected)) : std::nullopt;
        const DeviceFinder::Outcome outcome = finder.finish(found, selected, row.ejecting);
        EXPECT_EQ(outcome.selection, row.selection) << row.name;
        EXPECT_EQ(outcome.update.has_value(), row.selection == Selection::Update) << row.name;
        if (row.selection != Selection::Update) { // otherwise nothing is asked of it
            EXPECT_EQ(outcome.sole ? outcome.sole->root.string() : "", row.sole) << row.name;
        }
        EXPECT_EQ(outcome.again, row.again) << row.name;
        EXPECT_TRUE(finder.begin()) << row.name;
    }
    DeviceFinder finder;
    ASSERT_TRUE(finder.begin());
    EXPECT_EQ(finder.finish({}, deviceAt("/folder", false), false).selection, Selection::Keep); // a test folder
}

TEST(RunningWork, putsBackNoStatusButItsOwn)
{
    std::vector<std::string> heard;
    const auto hear = [&heard](const char *what) { return [&heard, what] { heard.emplace_back(what); }; };
    RunningWork work({.busyChanged = hear("busy"),
                         .cancellingChanged = hear("cancelling"),
                         .progressChanged = hear("progress"),
                         .statusChanged = hear("status"),
                         .alertChanged = hear("alert")},
        TimeLeft::Moment::clock::now);
    const QString first = work.status();
    for (const bool isOvertaken : {false, true}) {
        work.begin(QStringLiteral("job"), RunningWork::Ends::AtItsEnd);
        work.beginNextStage(QStringLiteral("its second stage"));
        work.report(0.5);
        if (isOvertaken) {
            work.setStatus(QStringLiteral("newer"));
        }
        work.putStatusBack();
        work.end();
        EXPECT_EQ(work.status(), isOvertaken ? QStringLiteral("newer") : first);
    }
    EXPECT_EQ(std::ranges::count(heard, "busy"), 4);
    EXPECT_EQ(work.progress(), 0.5); // until the next one begins
}

TEST(DuplicateCheck, knowsNothingOfOtherTracks)
{
    int changes = 0;
    DuplicateCheck check({.issuesChanged = [&] { ++changes; }, .statusChanged = [] {}});
    check.begin();
    check.finish({QualityIssue {}});
    EXPECT_TRUE(check.isComplete() && check.issues().size() == 1 && !check.isOvertaken());
    check.forget();
    EXPECT_TRUE(!check.isComplete() && check.issues().empty() && changes == 2);
    check.begin();
    check.forget();
    EXPECT_TRUE(check.isOvertaken() && check.isRunning());
    check.interrupt();
    EXPECT_EQ(check.status(), DuplicateCheck::interrupted());
}

TEST(IPodProfile, theFirstModelWithTheTargetIsTaken)
{
    const std::pair<std::optional<QString>, const char *> rows[]
        = {{u"ipod1g2g"_s, "ipod1"}, {u"ipodvideo"_s, "video"}, {u"ipod6g"_s, "classic6"}, {u"ipodnano"_s, "nano1"},
            {u"ipodnano2g"_s, "nano2"}, {u"IPODVIDEO"_s, "unknown"}, {u""_s, "unknown"}, {std::nullopt, "unknown"}};
    for (const auto &[target, id] : rows) {
        EXPECT_EQ(IPodProfile::automatic(target).id, QLatin1String(id)) << id;
    }
    std::set<QString> ids;
    for (const IPodProfile &profile : IPodProfile::all()) {
        ids.insert(profile.id);
        EXPECT_EQ(IPodProfile::withId(profile.id), &profile);
    }
    EXPECT_EQ(ids.size(), 32U);
    EXPECT_FALSE(ids.contains(IPodProfile::fallback().id));
}

TEST(StorageUse, sharesTheDiskOutAndNeverMoreThanItHas)
{
    struct Row {
        std::int64_t total;
        std::int64_t available;
        std::int64_t flac;
        std::int64_t mp3;
        std::int64_t aac;
        StorageUse use;
    };
    const Row rows[] = {{100, 40, 20, 10, 5, {20, 10, 5, 25, 40}}, {100, 40, 0, 0, 0, {0, 0, 0, 60, 40}},
        {100, 90, 20, 30, 5, {10, 0, 0, 0, 90}}, {0, 0, 20, 10, 5, {}}, {100, 200, 1, 1, 1, {0, 0, 0, 0, 100}}};
    for (const Row &row : rows) {
        std::vector<Track> music;
        for (const auto &[codec, bytes] :
            {std::pair("FLAC", row.flac), std::pair("MP3", row.mp3), std::pair("AAC", row.aac)}) {
            music.emplace_back().info.codec = QString::fromLatin1(codec);
            music.back().bytes = bytes;
        }
        Device device;
        device.available = row.available;
        device.total = row.total;
        EXPECT_EQ(StorageUse::of(device, music), row.use) << row.total << ' ' << row.available;
    }
}
