// The library, what is shown of it, the queue and the transfer.
#include "support/ModelDesk.h"

#include "library/AlbumGrouping.h"
#include "platform/Files.h"
#include "platform/TextOrder.h"

#include <QRandomGenerator>

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

    void dropsASecondLongJob()
    {
        Library library;
        {
            const HeldJobs held;
            library.model->importURLs({library.folder / "Band"}, false, true);
            library.model->importURLs({library.folder / "High"}, false, true);
        }
        ModelDesk::waitForJobs(*library.model);
        QCOMPARE(library.model->tracks().size(), 2U);
    }

    void restoresTheChoicesOfTheLastRun()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", false);
        {
            const auto model = desk.start();
            model->setAppearance(QStringLiteral("classic")); // no device: nothing to remember it for
            model->select(device);
            model->setAppearance(QStringLiteral("nano"));
            model->setFinish(QStringLiteral("black"));
            model->setFinish(QStringLiteral("auto"));
            model->setViewMode(QStringLiteral("Utwory"));
            model->setSortMode(QStringLiteral("Rok"));
            model->setTileSize(200);
        }
        const auto model = desk.start();
        QCOMPARE(model->viewMode(), QStringLiteral("Utwory"));
        QCOMPARE(model->sortMode(), QStringLiteral("Rok"));
        QCOMPARE(model->tileSize(), 200.0);
        const QString root = Files::text(device.root);
        QCOMPARE(desk.settings.text(QStringLiteral("appearance-") + root), std::optional(QStringLiteral("nano")));
        QVERIFY(!desk.settings.text(QStringLiteral("finish-") + root));
        model->setTileSize(-1);
        QCOMPARE(desk.start()->tileSize(), 170.0);
    }

    void filtersAndSorts()
    {
        Library library;
        library.import();
        const std::tuple<const char *, const char *, bool, const char *, const char *> rows[] = {
            {"Album", "Wszystko", false, "", "Double, High 10, Plain"},
            {"Rok", "Wszystko", false, "", "High 10, Double, Plain"},
            {"unknown", "Wszystko", false, "", "High 10, Double, Plain"},
            {"Rok", "MP3", false, "", "Plain"},
            {"Rok", "Pozostałe", false, "", ""},
            {"Rok", "FLAC", true, "", "High 10"},
            {"Rok", "Wszystko", false, "żUK plain", "Plain"},
            {"Rok", "Wszystko", false, "2 y", "Plain"},
        };
        for (const auto &[order, format, highResolution, search, titles] : rows) {
            library.model->setSortMode(QString::fromUtf8(order));
            library.model->setFormatFilter(QString::fromUtf8(format));
            library.model->setHiResOnly(highResolution);
            library.model->setSearch(QString::fromUtf8(search));
            QCOMPARE(library.titles(), QString::fromUtf8(titles));
        }
        QCOMPARE(library.model->albums()->front()->tracks.size(), 2U); // the album keeps what does not match
        QCOMPARE(library.model->filteredTracks()->size(), 1U);
        for (const auto &[depth, rate, high] : {std::tuple(16, 48000, false), std::tuple(16, 48001, true),
                 std::tuple(17, 44100, true), std::tuple(0, 0, false)}) {
            AudioInfo info;
            info.bitDepth = depth;
            info.sampleRate = rate;
            QCOMPARE(isHighResolution(info), high);
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
            for (std::size_t i = 1; i < shown.size(); ++i) {
                QVERIFY(inOrder(*model, *shown[i - 1], *shown[i]));
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
    }

private:
    static bool inOrder(const MarluneModel &model, const Album &a, const Album &b)
    {
        const auto year = [](const Album &album) { return album.tracks.front().info.year; };
        if (model.sortMode() == QStringLiteral("Album")) {
            return TextOrder::compare(a.title, b.title) <= 0;
        }
        if (model.sortMode() == QStringLiteral("Rok")) {
            return year(a) >= year(b);
        }
        if (model.sortMode() == QStringLiteral("Rozmiar")) {
            return a.bytes() >= b.bytes();
        }
        return TextOrder::compare(a.artist + a.title, b.artist + b.title) <= 0;
    }
};

QTEST_GUILESS_MAIN(ModelTest)
#include "ModelTest.moc"
