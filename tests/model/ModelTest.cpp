// The library, what is shown of it, the queue and the transfer.
#include "support/FailingDisk.h"
#include "support/ModelDesk.h"

#include "artwork/Artwork.h"

#include "platform/files/Files.h"

#include <QBuffer>

namespace {

/// A folder of three albums: one of two discs, one MP3 without tags, one in high resolution; and a model.
struct Library {
    ModelDesk desk;
    fs::path folder = desk.folder / "Computer";
    std::unique_ptr<MarluneModel> model = desk.start();

    Library()
    {
        for (const std::string number : {"1", "2"}) {
            desk.folder.write("Computer/Band/Double/CD" + number + "/01 a.flac",
                flacWith({"TITLE=First", "ARTIST=Band", "ALBUM=Double", "TRACKNUMBER=1", "DISCNUMBER=" + number,
                             "DATE=1999"},
                    "audio" + number));
        }
        desk.folder.write("Computer/Żuk/Plain/1 x.mp3", "no tags");
        desk.folder.write("Computer/Żuk/Plain/2 y.mp3", "none");
        desk.folder.write("Computer/High/Resolution/1.flac",
            flacWith({"TITLE=Wide", "ARTIST=abba", "ALBUM=High 10", "DATE=2020-01"}, std::string(1000, 'x'), 24));
    }

    void import(const char *part = "", bool enqueue = false) { ModelDesk::import(*model, folder / part, enqueue); }
};

} // namespace

class ModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void importsOnceAndRemembersTheLibrary()
    {
        Library library;
        library.model->importMusic();
        library.desk.panels.answer({library.folder});
        ModelDesk::waitForJobs(*library.model);
        QCOMPARE(library.model->queued().size(), 5);
        QCOMPARE(library.model->status(), u"Odczytano utwory: 5"_s);
        library.import("Band");
        QCOMPARE(library.model->tracks().size(), 5U);
        QCOMPARE(library.model->status(), u"Nie znaleziono nowych plików audio"_s);

        fs::remove(library.folder / "Żuk/Plain/1 x.mp3");
        const auto model = library.desk.start();
        QCOMPARE(model->tracks().size(), 4U);
        QVERIFY(model->queued().isEmpty());
        const Album album = *model->albums()->front();
        model->forget(album);
        QCOMPARE(library.desk.settings.texts(u"libraryPaths"_s).size(), 4 - qsizetype(album.tracks.size()));
        QVERIFY(fs::exists(album.tracks.front().url));

        fs::remove_all(library.folder); // nothing comes back then, and the newest status stays
        std::unique_ptr<MarluneModel> empty;
        {
            const HeldJobs held;
            empty = std::make_unique<MarluneModel>(library.desk.environment());
            QCOMPARE(empty->status(), u"Odczytuję albumy…"_s);
            empty->select(library.desk.makeDevice("IPOD", true));
            empty->volumeUnmounted(empty->device()->root);
        }
        ModelDesk::waitForJobs(*empty);
        QCOMPARE(empty->status(), u"iPod został odłączony"_s);
        QCOMPARE(library.desk.start()->status(), u"Gotowy na Twoją muzykę"_s);
    }

    void restoresTheChoicesOfTheLastRun()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", false);
        const QString key = u"appearance-"_s + Files::text(device.root);
        for (const char *look : {"nano5", "auto"}) {
            const auto model = desk.start();
            model->setAppearance(u"classic6"_s); // no device: nothing to remember it for
            QCOMPARE(model->deviceProfile().id + model->deviceFinish(), u"unknownwhite"_s);
            model->select(device);
            desk.waitForJobs(*model);
            model->setAppearance(QString::fromLatin1(look));
            const bool isChosen = look[0] == 'n';
            QCOMPARE(model->deviceProfile().id, isChosen ? u"nano5"_s : u"video"_s);
            QCOMPARE(model->deviceFinish(), isChosen ? u"purple"_s : u"white"_s);
            model->setFinish(u"gold"_s);
            QCOMPARE(model->deviceFinish(), u"gold"_s);
            model->setFinish(u"auto"_s);
            model->setSortMode(u"Rok"_s);
            model->setTileSize(-1);
            QCOMPARE(desk.settings.text(key).value_or(u"auto"_s), QString::fromLatin1(look));
        }
        const auto model = desk.start();
        QCOMPARE(model->sortMode(), u"Rok"_s);
        QCOMPARE(model->tileSize(), 170.0); // none that tiles can have was stored
    }

    void togglesAlbumsOnTheSideThatIsShown()
    {
        Library library;
        library.import();
        MarluneModel &model = *library.model;
        const Album album = *model.albums()->back();
        model.toggleTrack(album.tracks[1]);
        QCOMPARE(model.queue().size(), 1U);
        model.toggle(album); // half of it is there: the rest comes
        QCOMPARE(model.queueBytes(), album.bytes());
        model.toggle(album);
        QVERIFY(model.queue().empty());
        model.setLibraryOnDevice(true);
        model.toggle(album);
        QVERIFY(model.queued().isEmpty());
        QCOMPARE(model.selectedOnDevice().size(), 2);
        model.forget(album); // not on this side
        QCOMPARE(model.tracks().size(), 5U);
    }

    void transfersByAlbumAndDisc()
    {
        Library library;
        MarluneModel &model = *library.model;
        library.import("", true);
        model.transferQueue(); // there is no device yet
        QVERIFY(!model.busy());
        const Device device = library.desk.makeDevice("IPOD", false);
        model.select(device);
        ModelDesk::run(model, &MarluneModel::transferQueue);
        QVERIFY(model.queued().isEmpty());
        QCOMPARE(model.transferred().size(), 5U);
        const auto music = filesBelow(device.root / "Music");
        QCOMPARE(music.size(), 5U);
        QCOMPARE(music.at("Band/Double/CD 1/01 a.flac"), fileBytes(library.folder / "Band/Double/CD1/01 a.flac"));

        // Another one comes to its place, and nobody says so: the lists name nothing that it does not hold.
        library.desk.settings.flush(); // no thread writes while the calls are exchanged
        const FailingDisk exchange(3, 0, FailingDisk::Fault::Event, [&device] {
            fs::rename(device.root, device.root.string() + " 1");
            fs::create_directories(device.root / ".rockbox");
        });
        Track track = model.tracks().front();
        track.id = QUuid::createUuid(); // a stranger to the library, which goes by its own names
        track.artist = u"Other"_s;
        model.transfer(std::vector {track});
        ModelDesk::waitForJobs(model);
        QVERIFY(model.alert() && model.alert()->startsWith(u"W miejscu iPoda jest teraz inny dysk"_s));
        QVERIFY(model.transferred().empty());
        QVERIFY(filesBelow(device.root).empty());
    }

    void putsCoversWithTheMusicAndTakesMacFilesAway()
    {
        Library library;
        MarluneModel &model = *library.model;
        QByteArray picture;
        QBuffer buffer(&picture);
        QVERIFY(QImage(30, 20, QImage::Format_RGB32).save(&buffer, "bmp"));
        library.desk.folder.write("Computer/Band/Double/CD1/cover.bmp", picture.toStdString());
        const Device device = library.desk.makeDevice("IPOD", false);
        library.desk.folder.write("IPOD/Music/a.mp3", "x");
        library.desk.folder.write("IPOD/Music/._a.mp3", std::string("\0\5\x16\7rest", 8));
        model.select(device);
        library.import("", true);
        TimeLeft::Moment now;
        library.desk.clock = [&now] { return now; };
        connect(&model, &MarluneModel::progressChanged, &model, [&] {
            now += std::chrono::seconds(model.progress() > 0 ? 2 : 0); // a step
            (void)model.timeLeft();
        });
        std::map<QString, std::optional<std::chrono::seconds>> timeLeft; // as each stage begins
        connect(&model, &MarluneModel::statusChanged, &model, [&] { timeLeft[model.status()] = model.timeLeft(); });
        ModelDesk::run(model, &MarluneModel::transferQueue);
        const auto afterCopying = timeLeft.at(u"Zapisuję okładki…"_s);
        QVERIFY(afterCopying > std::chrono::seconds(0) && afterCopying < std::chrono::seconds(5));
        QVERIFY(!model.timeLeft());
        auto music = filesBelow(device.root / "Music");
        const auto cover = music.extract("Band/Double/CD 1/cover.jpeg");
        QVERIFY(!cover.empty() && !Artwork::compatibilityIssue(QByteArray::fromStdString(cover.mapped())));
        QCOMPARE(music.size(), 6U); // the tracks and a.mp3
        const auto backups = filesBelow(library.desk.folder / "data/Marlune/Backups");
        QVERIFY(std::ranges::any_of(backups, [](const auto &file) { return file.second.ends_with("rest"); }));
        QCOMPARE(model.status(), u"Wgrano: 5. Pominięto identyczne: 0."_s);

        // A cover that cannot be prepared ends the transfer; the music is there, and the queue stays for another try.
        library.desk.folder.write("Computer/New/Album/cover.jpg", "no picture");
        library.desk.folder.write("Computer/New/Album/1.mp3", "new");
        library.import("New", true);
        ModelDesk::run(model, &MarluneModel::transferQueue);
        QVERIFY(model.alert().value_or(QString()).startsWith(
            u"Nie można odczytać obrazu. (New – Album)\n\nCzęść utworów mogła już zostać wgrana."_s));
        QCOMPARE(model.status(), u"Transfer przerwany"_s);
        QVERIFY(!model.busy() && model.queued().size() == 1);
        QVERIFY(fs::exists(device.root / "Music/New/Album/1.mp3"));

        library.desk.folder.write("IPOD/Music/._a.mp3", std::string("\0\5\x16\7rest", 8));
        ModelDesk::run(model, &MarluneModel::cleanupMacFiles);
        QCOMPARE(model.status(), u"Usunięto pliki metadanych macOS: 1. Kopia jest na Macu."_s);
    }
};

QTEST_GUILESS_MAIN(ModelTest)
#include "ModelTest.moc"
