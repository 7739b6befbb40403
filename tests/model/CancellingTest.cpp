// Every long job, ended by the user at each step of it: what is complete stays and is counted, nothing is half written,
// and the same job begun again does the rest.
#include "support/CannedServer.h"
#include "support/FailingDisk.h"
#include "support/ModelDesk.h"

#include "platform/files/Files.h"
#include "platform/tasks/Background.h"

#include <QRegularExpression>
#include <QSemaphore>
#include <QThread>

#include <set>

namespace {

using FileMap = std::map<std::string, std::string>;

constexpr int manyFiles = 45; // progress is told of every twentieth
const std::string companion("\0\5\x16\7", 4);

std::string picture(const char *name)
{
    return fileBytes(dataFile("images") / name);
}

/// Finds one album whatever it is asked for, and has its image.
CannedServer::Answer answerTo(const CannedServer::Asked &asked)
{
    if (!asked.target.contains("query=")) {
        return CannedServer::answer("200 OK", QByteArray::fromStdString(picture("plain.png")));
    }
    const QByteArray title = asked.target.contains("Four") ? "Four" : "Five";
    return CannedServer::answer("200 OK",
        R"({"release-groups":[{"id":"0cd1dd5b-3c5e-4d3a-9f0e-000000000000","score":100,"title":")" + title
            + R"(","artist-credit":[{"name":"D"}]}]})");
}

struct World : ModelDesk {
    Device device = makeDevice("IPOD", false);
    CannedServer server {{}};
    std::unique_ptr<MarluneModel> model;
    int tracksAtStop = manyFiles; ///< on the device
    std::atomic<int> minutes = 0; ///< that each look at the clock takes

    World()
    {
        clock = [this, passed = std::make_shared<std::atomic<int>>(0)] {
            return TimeLeft::Moment(std::chrono::minutes(*passed += minutes));
        };
        covers = std::make_unique<CoverSearch>(CoverServices {.catalogue = server.root(),
            .site = QUrl(u"https://site.test"_s),
            .archive = server.root(),
            .spacing = std::chrono::milliseconds(1)});
        server.answering = answerTo;
        for (const char *name : {"config.cfg", "themes/Dawn.cfg", "wps/Dawn.wps"}) {
            folder.write(fs::path("IPOD/.rockbox") / name, name);
        }
        for (const auto &[place, image] :
            {std::pair("Computer/A/One/1", "plain.png"), {"Computer/A/One/2", "plain.png"},
                {"Computer/B/Two/1", "progressive.jpg"}, {"IPOD/Music/C/Three/1", "progressive.jpg"},
                {"IPOD/Music/C/Zero/1", "plain.png"}, {"IPOD/Music/D/Four/1", ""}, {"IPOD/Music/D/Five/1", ""}}) {
            const fs::path file = place;
            folder.write(file.string() + ".flac",
                flacWith({"ARTIST=" + file.parent_path().parent_path().filename().string(),
                             "ALBUM=" + file.parent_path().filename().string()},
                    place, 16, *image ? picture(image) : ""));
            if (place[0] == 'I') {
                folder.write(file.parent_path() / "._1.flac", companion + place);
            }
        }
        model = start();
        model->select(device);
        waitForJobs(*model);
    }

    void writeMany(const fs::path &place) const
    {
        for (int i = 0; i < manyFiles; ++i) {
            folder.write(place / (std::to_string(100 + i) + ".mp3"), "same");
        }
    }
    [[nodiscard]] FileMap onDevice() const { return filesBelow(device.root); }
    [[nodiscard]] FileMap backups() const
    {
        const fs::path place = folder / "data/Marlune/Backups";
        return fs::exists(place) ? filesBelow(place) : FileMap();
    }
    [[nodiscard]] int count(const std::string &ending) const
    {
        const FileMap files = onDevice();
        return int(std::ranges::count_if(files, [&](const auto &file) { return file.first.ends_with(ending); }));
    }
    /// What is there once the job is done.
    [[nodiscard]] auto summary() const
    {
        return std::tuple(onDevice(), model->tracks().size(), model->deviceTracks().size(), model->deviceReading(),
            model->queued().size(), model->transferred().size(), model->duplicatesChecked(),
            model->duplicateIssues().size(), model->backups().empty(), settings.texts(u"libraryPaths"_s).size());
    }
};

enum class Step { DiskCall, Request, Progress };

struct Row {
    const char *name;
    Step step;
    std::function<void(World &)> prepare;
    void (*begin)(World &);
    /// How far the job really came, which is the first number of the status.
    std::function<int(const World &)> reached;
};

int firstNumber(const QString &status)
{
    const auto match = QRegularExpression(u"\\d+"_s).match(status);
    return match.hasMatch() ? match.captured().toInt() : 0;
}

void browseDevice(World &world)
{
    ModelDesk::run(*world.model, &MarluneModel::scanDeviceMusic);
}

int newCovers(const World &world)
{
    return world.count("cover.jpeg");
}

/// How many files the transfer has brought. A track that waits no more is there, with its cover.
int broughtFiles(const World &world)
{
    int brought = 0;
    for (const Track &track : world.model->tracks()) {
        const fs::path place = world.device.root / "Music" / track.url.lexically_relative(world.folder / "Computer");
        const bool isThere = fs::exists(place);
        brought += isThere ? 1 : 0;
        if (!world.model->queued().contains(track.id) && !(isThere && fs::exists(place.parent_path() / "cover.jpeg"))) {
            return -2;
        }
    }
    return world.model->transferred().size() == std::size_t(brought) ? brought : -3;
}

const std::vector<Row> &rows()
{
    static const std::vector<Row> all {
        {"transfer", Step::DiskCall,
            [](World &world) { ModelDesk::import(*world.model, world.folder / "Computer", true); },
            [](World &world) {
                world.model->queued().isEmpty() ? world.model->cleanupMacFiles() : world.model->transferQueue();
            },
            broughtFiles},
        {"transfer to a slow disk", Step::DiskCall,
            [](World &world) {
                world.minutes = 1;
                ModelDesk::import(*world.model, world.folder / "Computer", true);
            },
            [](World &world) { rows().front().begin(world); }, broughtFiles},
        {"cleanup", Step::DiskCall, [](World &) {}, [](World &world) { world.model->cleanupMacFiles(); },
            [](const World &world) {
                const int removed = 4 - world.count("/._1.flac");
                return removed == 0 && !world.backups().empty() ? -2 : removed;
            }},
        {"backup", Step::DiskCall, [](World &) {}, [](World &world) { world.model->backup(); },
            [](const World &world) { return world.model->backups().empty() && world.backups().empty() ? 0 : 1; }},
        {"repair", Step::DiskCall, browseDevice, [](World &world) { world.model->repairAvailableCovers(); }, newCovers},
        {"search while it writes", Step::DiskCall, browseDevice, [](World &world) { world.model->findMissingCovers(); },
            newCovers},
        {"search while it asks", Step::Request, browseDevice, [](World &world) { world.model->findMissingCovers(); },
            newCovers},
        {"import", Step::Progress, [](World &world) { world.writeMany("Many"); },
            [](World &world) { world.model->importURLs({world.folder / "Many"}, false, true); },
            [](const World &world) {
                const auto count = world.model->tracks().size();
                const bool agrees = std::size_t(world.model->queued().size()) == count
                    && std::size_t(world.settings.texts(u"libraryPaths"_s).size()) == count;
                return agrees ? int(count) : -2;
            }},
        {"scan", Step::Progress, [](World &world) { world.writeMany("IPOD/Music/Many"); },
            [](World &world) { world.model->scanDeviceMusic(); },
            [](const World &world) {
                const bool isPartial = world.model->deviceReading() == DeviceReading::Partial;
                return isPartial ? int(world.model->deviceTracks().size()) : -2;
            }},
        {"duplicates", Step::Progress,
            [](World &world) {
                world.writeMany("Many");
                ModelDesk::import(*world.model, world.folder / "Many");
            },
            [](World &world) { world.model->checkDuplicates(); },
            [](const World &world) {
                const auto &groups = world.model->duplicateIssues();
                return world.model->duplicatesChecked() ? -2
                    : groups.empty()                    ? std::min(1, firstNumber(world.model->status()))
                                                        : int(groups.front().tracks.size());
            }}};
    return all;
}

/// Runs the row's job and cancels it at its `at`-th step, at 0 before it does anything. False if it has fewer. With
/// another fault than an event the disk has that fault there as well.
bool runAndCancel(
    World &world, const Row &row, int at, FailingDisk::Fault fault = FailingDisk::Fault::Event, bool cancels = true)
{
    MarluneModel &model = *world.model;
    int steps = 0;
    const auto step = [&] {
        if (++steps == at) {
            model.cancelWork();
        }
    };
    world.server.answering = [&](const CannedServer::Asked &asked) {
        row.step == Step::Request ? step() : void();
        return model.cancelling() ? CannedServer::Answer {.bytes = {}, .then = CannedServer::Then::Stay}
                                  : answerTo(asked);
    };
    const auto connection = QObject::connect(&model, &MarluneModel::progressChanged,
        [&] { row.step == Step::Progress &&model.progress() > 0 ? step() : void(); });
    QSemaphore cancelled;
    const auto cancelThere = [&] {
        if (QThread::currentThread() == model.thread()) {
            model.cancelWork();
        } else { // in the middle of the job's call; the settings' thread is not to be waited for
            postToUi([&] {
                world.tracksAtStop = world.count(".flac");
                model.cancelWork();
                cancelled.release();
            });
            (void)cancelled.tryAcquire(1, 1000);
        }
    };
    world.settings.flush();
    const FailingDisk disk(
        row.step == Step::DiskCall ? at : 0, EIO, fault, cancels ? cancelThere : std::function<void()>());
    {
        const HeldJobs held({JobPriority::UserInitiated});
        row.begin(world);
        if (at == 0) {
            model.cancelWork();
        }
    }
    ModelDesk::waitForJobs(model);
    world.settings.flush();
    QObject::disconnect(connection);
    world.server.answering = answerTo;
    return row.step == Step::DiskCall ? FailingDisk::reached() : steps >= at;
}

} // namespace

class CancellingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatIsCompleteAndDoesTheRestTheNextTime_data()
    {
        QTest::addColumn<std::size_t>("place");
        for (std::size_t i = 0; i < rows().size(); ++i) {
            QTest::newRow(rows()[i].name) << i;
        }
    }

    void keepsWhatIsCompleteAndDoesTheRestTheNextTime()
    {
        QFETCH(std::size_t, place);
        const Row &row = rows()[place];
        World done;
        row.prepare(done);
        row.begin(done);
        done.waitForJobs(*done.model);
        done.settings.flush(); // no thread writes while the calls are exchanged
        const FileMap after = done.onDevice();
        int stopped = 0;
        bool isReached = true;
        int at = 0;
        for (; isReached; ++at) {
            World world;
            row.prepare(world);
            MarluneModel &model = *world.model;
            const FileMap before = world.onDevice();
            isReached = runAndCancel(world, row, at);
            const QString said = model.status() + u" at "_s + QString::number(at);
            const auto context = said.toUtf8();
            QVERIFY2(!model.busy() && !model.cancellable() && !model.cancelling(), context.constData());
            QVERIFY2(!holdsPartialFile(world.folder.path()), context.constData());
            const FileMap now = world.onDevice();
            std::set<std::string> saved;
            for (const auto &[name, bytes] : world.backups()) {
                saved.insert(bytes);
            }
            const auto has = [](const FileMap &all, const auto &file) {
                return all.contains(file.first) && all.at(file.first) == file.second;
            };
            for (const auto &file : now) {
                QVERIFY2(has(before, file) || has(after, file), (file.first + " " + context.toStdString()).c_str());
            }
            for (const auto &file : before) {
                QVERIFY2(has(now, file) || saved.contains(file.second), file.first.c_str());
            }
            if (said.startsWith(u"Przerwano"_s)) {
                ++stopped;
                QVERIFY2(world.count(".flac") <= world.tracksAtStop + 1, context.constData());
                QVERIFY2(!model.alert(), context.constData());
                const int reached = row.reached(world);
                QVERIFY2(reached == firstNumber(model.status()),
                    (context + " but " + QByteArray::number(reached)).constData());
            } else {
                QVERIFY2(model.status() == done.model->status() && world.summary() == done.summary(), context);
            }
            row.begin(world);
            world.waitForJobs(model);
            QVERIFY2(!model.status().startsWith(u"Przerwano"_s), context.constData());
            QVERIFY2(world.summary() == done.summary(), context.constData());
        }
        // Behind the begin of its last piece a job ends as ever; so do those that read, which a stop reaches some files
        // later.
        QVERIFY(row.step == Step::Progress ? stopped > 0 : stopped > at / 3);
    }

    void saysWhereTheOldCoverIsEvenIfTheDiskDiesWithTheStop()
    {
        const auto prepare = [](World &world) {
            browseDevice(world);
            for (const char *album : {"C/Three", "D/Five", "D/Four"}) {
                world.folder.write(fs::path("IPOD/Music") / album / "cover.jpeg", "the user's own");
            }
        };
        const auto download = [](World &world) {
            CoverCandidate candidate;
            candidate.id = u"0cd1dd5b-3c5e-4d3a-9f0e-000000000000"_s;
            world.model->downloadCover(candidate, *world.model->albums()->back());
        };
        for (const Row &row :
            {Row {"repair", Step::DiskCall, prepare, [](World &world) { world.model->repairAvailableCovers(); }, {}},
                {"search", Step::DiskCall, prepare, [](World &world) { world.model->findMissingCovers(); }, {}},
                {"download", Step::DiskCall, prepare, download, {}}}) {
            bool isNamed = false;
            bool isReached = true;
            for (int at = 1; isReached && !isNamed; ++at) {
                for (const bool cancels : {false, true}) {
                    World world;
                    row.prepare(world);
                    isReached = runAndCancel(world, row, at, FailingDisk::Fault::Dead, cancels);
                    const QString alert = world.model->alert().value_or(QString());
                    const bool isNamedNow = alert.contains(u"\n\nKopia: "_s);
                    QVERIFY2(!cancels || isNamedNow == isNamed, row.name);
                    QVERIFY(!isNamedNow || world.model->status().contains(u"Nie udało się"_s) || row.name[0] == 's');
                    isNamed = isNamedNow;
                }
            }
            QVERIFY2(isNamed, row.name);
        }
    }

    void forgetsNothingOfALibraryThatWasNotReadBackToItsEnd()
    {
        World world;
        MarluneModel &first = *world.model;
        world.import(first, world.folder / "Computer");
        const auto stored = [&] {
            const QStringList paths = world.settings.texts(u"libraryPaths"_s);
            return QSet<QString>(paths.begin(), paths.end());
        };
        QSet<QString> all = stored();
        QCOMPARE(all.size(), 3);
        const QStringList order = world.settings.texts(u"libraryPaths"_s);
        std::unique_ptr<MarluneModel> model;
        {
            const HeldJobs held({JobPriority::UserInitiated});
            model = std::make_unique<MarluneModel>(world.environment());
            QVERIFY(model->cancellable() && !model->cancelling());
            model->cancelWork();
            QVERIFY(model->cancelling());
        }
        world.waitForJobs(*model);
        QCOMPARE(
            model->status(), u"Przerwano. Odczytano utwory: 0. Reszta biblioteki wróci przy następnym uruchomieniu."_s);
        QVERIFY(model->tracks().empty() && world.settings.texts(u"libraryPaths"_s) == order);
        world.writeMany("Many");
        world.import(*model, world.folder / "Many/100.mp3");
        world.import(*model, world.folder / "Computer/A/One/1.flac"); // the other one of the album is not back
        QCOMPARE(stored().size(), 4);
        model->forget(*model->albumWith(model->tracks().front().id)); // is no more, though it was in the stored ones
        model->forget(*model->albumWith(model->tracks().front().id));
        all.removeIf([&](const QString &path) { return path.contains(u"/A/One/"_s); });
        QVERIFY(model->tracks().empty() && stored() == all);
        model = world.start();
        QCOMPARE(model->tracks().size(), 1U);
        QVERIFY(stored() == all);
    }
};

QTEST_GUILESS_MAIN(CancellingTest)
#include "CancellingTest.moc"
