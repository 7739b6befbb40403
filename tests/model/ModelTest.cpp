// The library, what is shown of it, the queue and the transfer.
#include "support/ModelDesk.h"

#include "artwork/Artwork.h"
#include "library/AlbumGrouping.h"
#include "platform/DiskCalls.h"
#include "platform/Files.h"
#include "platform/TextOrder.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QScopeGuard>

#include <sys/stat.h>

namespace {

/// A folder of three albums: one of two discs, one MP3 without tags, one in high resolution; and a model.
struct Library {
    ModelDesk desk;
    std::filesystem::path folder = desk.folder / "Computer";
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

    void import(const char *part = "", bool enqueue = false)
    {
        model->importURLs({folder / part}, false, enqueue);
        ModelDesk::waitForJobs(*model);
    }

    [[nodiscard]] QString titles() const
    {
        QStringList result;
        for (const auto &album : *model->albums()) {
            result.append(album->title);
        }
        return result.join(QStringLiteral(", "));
    }
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
        QCOMPARE(library.model->status(), QStringLiteral("Odczytano utwory: 5"));
        library.import("Band");
        QCOMPARE(library.model->tracks().size(), 5U);
        QCOMPARE(library.model->status(), QStringLiteral("Nie znaleziono nowych plików audio"));

        std::filesystem::remove(library.folder / "Żuk/Plain/1 x.mp3");
        const auto model = library.desk.start();
        QCOMPARE(model->tracks().size(), 4U);
        QVERIFY(model->queued().isEmpty());
        const Album album = *model->albums()->front();
        model->forget(album);
        QCOMPARE(
            library.desk.settings.texts(QStringLiteral("libraryPaths")).size(), 4 - qsizetype(album.tracks.size()));
        QVERIFY(std::filesystem::exists(album.tracks.front().url));
    }

    void restoresTheChoicesOfTheLastRun()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", false);
        const QString key = QStringLiteral("appearance-") + Files::text(device.root);
        for (const char *look : {"nano", "auto"}) {
            const auto model = desk.start();
            model->setAppearance(QStringLiteral("classic")); // no device: nothing to remember it for
            model->select(device);
            model->setAppearance(QString::fromLatin1(look));
            model->setSortMode(QStringLiteral("Rok"));
            model->setTileSize(-1);
            QCOMPARE(desk.settings.text(key).value_or(QStringLiteral("auto")), QString::fromLatin1(look));
        }
        const auto model = desk.start();
        QCOMPARE(model->sortMode(), QStringLiteral("Rok"));
        QCOMPARE(model->tileSize(), 170.0); // none that tiles can have was stored
    }

    void filtersAndSorts()
    {
        Library library;
        library.import();
        const std::tuple<const char *, const char *, bool, const char *, const char *> rows[]
            = {{"Album", "Wszystko", false, "", "Double, High 10, Plain"},
                {"Rok", "Wszystko", false, "", "High 10, Double, Plain"},
                {"Album", "Wszystko", false, "", "Double, High 10, Plain"},
                {"Rozmiar", "Wszystko", false, "", "High 10, Double, Plain"},
                {"unknown", "Wszystko", false, "", "High 10, Double, Plain"}, {"Rok", "MP3", false, "", "Plain"},
                {"Rok", "Pozostałe", false, "", ""}, {"Rok", "FLAC", true, "", "High 10"},
                {"Rok", "Wszystko", false, "żUK plain", "Plain"}, {"Rok", "Wszystko", false, "2 y", "Plain"}};
        for (const auto &[order, format, highResolution, search, titles] : rows) {
            library.model->setSortMode(QString::fromUtf8(order));
            library.model->setFormatFilter(QString::fromUtf8(format));
            library.model->setHiResOnly(highResolution);
            library.model->setSearch(QString::fromUtf8(search));
            QCOMPARE(library.titles(), QString::fromUtf8(titles));
        }
        QCOMPARE(library.model->albums()->front()->tracks.size(), 2U); // the album keeps what does not match
        QCOMPARE(library.model->filteredTracks()->size(), 1U);
        AudioInfo info;
        info.bitDepth = 16;
        for (const int rate : {48000, 48001}) {
            info.sampleRate = rate;
            QCOMPARE(isHighResolution(info), rate > 48000);
        }
    }

    void showsAlwaysWhatAFreshComputationWouldGive()
    {
        Library library;
        ModelDesk &desk = library.desk;
        MarluneModel *const model = library.model.get();
        desk.folder.write("IPOD/Music/On device.mp3", "x");
        model->select(desk.makeDevice("IPOD", false));
        QRandomGenerator random(20261122);
        const auto pick = [&](const std::vector<const char *> &list) {
            return list[std::size_t(random.bounded(int(list.size())))];
        };
        const auto text = [&](const std::vector<const char *> &list) { return QString::fromUtf8(pick(list)); };
        const std::vector<std::function<void()>> changes {
            [&] { model->setSearch(text({"", "", "", "a", "x"})); },
            [&] { model->setFormatFilter(text({"Wszystko", "Wszystko", "FLAC", "Pozostałe"})); },
            [&] { model->setHiResOnly(random.bounded(4) == 1); },
            [&] { model->setSortMode(text({"Album", "Rok", "Rozmiar", "Wykonawca"})); },
            [&] { model->setLibraryOnDevice(random.bounded(2) == 1); },
            [&] { TextOrder::setLanguage(TextOrder::Language(random.bounded(2))); },
            [&] { library.import(pick({"Band", ""})); },
            [&] { model->scanDeviceMusic(); },
            [&] {
                if (!model->albums()->empty()) {
                    model->forget(Album(*model->albums()->front()));
                }
            },
            [&] {
                model->volumeUnmounted(desk.folder / "IPOD");
                model->select(Device::inspect(desk.folder / "IPOD"));
            },
        };
        int nonEmpty = 0;
        for (int step = 0; step < 300; ++step) {
            changes[std::size_t(random.bounded(int(changes.size())))]();
            desk.waitForJobs(*model);
            // What a computation from the tracks alone gives.
            const auto matches = [&](const Track &track) { return model->matches(track); };
            const std::vector<Track> &tracks = model->activeTracks();
            std::vector<Album> albums = AlbumGrouping::albums(tracks);
            std::erase_if(albums, [&](const Album &album) { return std::ranges::none_of(album.tracks, matches); });
            const auto count = std::size_t(std::ranges::count_if(tracks, matches));
            const auto &shown = *model->albums();
            QCOMPARE(shown.size(), albums.size());
            QCOMPARE(model->filteredTrackCount(), count);
            QCOMPARE(model->filteredTracks()->size(), count);
            for (const Album &album : albums) {
                QVERIFY(std::ranges::any_of(shown, [&](const auto &other) { return *other == album; }));
            }
            nonEmpty += shown.size() > 1 ? 1 : 0;
        }
        QVERIFY(nonEmpty > 30);
        TextOrder::setLanguage(TextOrder::Language::Polish);
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
        model.transferQueue();
        ModelDesk::waitForJobs(model);
        QVERIFY(model.queued().isEmpty());
        QCOMPARE(model.transferred().size(), 5U);
        const auto music = filesBelow(device.root / "Music");
        QCOMPARE(music.size(), 5U);
        QCOMPARE(music.at("Band/Double/CD 1/01 a.flac"), fileBytes(library.folder / "Band/Double/CD1/01 a.flac"));

        // One disc alone keeps its disc folder: the plan looks at the whole library.
        Track stranger
            = *std::ranges::find(model.tracks(), 2, [](const Track &track) { return track.info.discNumber; });
        model.transfer(std::vector {stranger});
        ModelDesk::waitForJobs(model);
        QCOMPARE(model.status(), QStringLiteral("Wgrano: 0. Pominięto identyczne: 1."));
        // A track outside the library goes by its own names.
        stranger.id = QUuid::createUuid();
        stranger.artist = QStringLiteral("Other");
        model.transfer(std::vector {stranger});
        ModelDesk::waitForJobs(model);
        QVERIFY(std::filesystem::exists(device.root / "Music/Other/Double/01 a.flac"));
        QCOMPARE(filesBelow(device.root / "Music").size(), 6U);

        // Another one comes to its place, and nobody says so: the lists name nothing that it does not hold.
        static std::filesystem::path place;
        place = device.root;
        stranger.artist = QStringLiteral("Third");
        QVERIFY(!model.transferred().empty());
        const auto restore = qScopeGuard([] { diskCalls() = DiskCalls::system(); });
        diskCalls().mkdirat = [](int folder, const char *name, mode_t mode) {
            std::filesystem::rename(place, place.string() + " 1");
            std::filesystem::create_directories(place / ".rockbox");
            diskCalls().mkdirat = ::mkdirat;
            return ::mkdirat(folder, name, mode);
        };
        model.transfer(std::vector {stranger});
        ModelDesk::waitForJobs(model);
        QVERIFY(model.alert() && model.alert()->startsWith(QStringLiteral("W miejscu iPoda jest teraz inny dysk")));
        QVERIFY(model.transferred().empty());
        QVERIFY(filesBelow(place).empty());
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
        model.transferQueue();
        ModelDesk::waitForJobs(model);
        auto music = filesBelow(device.root / "Music");
        const auto cover = music.extract("Band/Double/CD 1/cover.jpeg");
        QVERIFY(!cover.empty() && !Artwork::compatibilityIssue(QByteArray::fromStdString(cover.mapped())));
        QCOMPARE(music.size(), 6U); // the tracks and a.mp3
        const auto backups = filesBelow(library.desk.folder / "data/Marlune/Backups");
        QVERIFY(std::ranges::any_of(backups, [](const auto &file) { return file.second.ends_with("rest"); }));
        QCOMPARE(model.status(), QStringLiteral("Wgrano: 5. Pominięto identyczne: 0."));

        // A cover that cannot be prepared ends the transfer; the music is there, and the queue stays for another try.
        library.desk.folder.write("Computer/New/Album/cover.jpg", "no picture");
        library.desk.folder.write("Computer/New/Album/1.mp3", "new");
        library.import("New", true);
        model.transferQueue();
        ModelDesk::waitForJobs(model);
        QVERIFY(model.alert().value_or(QString()).startsWith(
            QStringLiteral("Nie można odczytać obrazu. (New – Album)\n\nCzęść utworów mogła już zostać wgrana.")));
        QCOMPARE(model.status(), QStringLiteral("Transfer przerwany"));
        QVERIFY(!model.busy() && model.queued().size() == 1);
        QVERIFY(std::filesystem::exists(device.root / "Music/New/Album/1.mp3"));

        library.desk.folder.write("IPOD/Music/._a.mp3", std::string("\0\5\x16\7rest", 8));
        model.cleanupMacFiles();
        ModelDesk::waitForJobs(model);
        QCOMPARE(model.status(), QStringLiteral("Usunięto pliki metadanych macOS: 1. Kopia jest na Macu."));
    }
};

QTEST_GUILESS_MAIN(ModelTest)
#include "ModelTest.moc"
