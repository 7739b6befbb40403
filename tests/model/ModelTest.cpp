// The library, what is shown of it, the queue and the transfer.
#include "support/ModelDesk.h"
#include "support/SampleTracks.h"

#include "library/AlbumGrouping.h"
#include "platform/Files.h"
#include "platform/TextOrder.h"

#include <QRandomGenerator>
#include <QSignalSpy>

namespace {

/// A library of three albums: one of two discs, one MP3 without tags, one in high resolution.
void writeLibrary(const TemporaryFolder &folder)
{
    for (const char *disc : {"1", "2"}) {
        const std::string number(disc);
        folder.write("Computer/Band/Double/CD" + number + "/01 a.flac",
            flacWith(
                {"TITLE=First", "ARTIST=Band", "ALBUM=Double", "TRACKNUMBER=1", "DISCNUMBER=" + number, "DATE=1999"},
                "audio" + number));
    }
    folder.write("Computer/Żuk/Plain/1 x.mp3", "no tags");
    folder.write("Computer/Żuk/Plain/2 y.mp3", "none");
    folder.write("Computer/High/Resolution/1.flac",
        "fLaC" + FlacBytes::block(0, FlacBytes::streamInfo(96000, 24, 96000))
            + FlacBytes::block(
                4, FlacBytes::comments({"TITLE=Wide", "ARTIST=abba", "ALBUM=High 10", "DATE=2020-01"}), true)
            + std::string(1000, 'x'));
}

std::vector<std::string> titles(const MarluneModel &model)
{
    std::vector<std::string> result;
    for (const auto &album : *model.albums()) {
        result.push_back(album->title.toStdString());
    }
    return result;
}

using Titles = std::vector<std::string>;

} // namespace

class ModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void importsOnceAndRemembersTheLibrary()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        {
            const auto model = desk.start();
            model->importMusic();
            QVERIFY(desk.panels.requests.back().files && desk.panels.requests.back().folders);
            desk.panels.answer({desk.folder / "Computer"});
            QVERIFY(model->busy());
            QCOMPARE(model->status(), QStringLiteral("Odczytuję albumy…"));
            desk.waitForJobs(*model);
            QCOMPARE(model->tracks().size(), 5U);
            QCOMPARE(model->queued().size(), 5);
            QCOMPARE(model->status(), QStringLiteral("Odczytano utwory: 5"));
            model->importURLs({desk.folder / "Computer/Band"}, false, true);
            desk.waitForJobs(*model);
            QCOMPARE(model->tracks().size(), 5U);
            QCOMPARE(model->status(), QStringLiteral("Nie znaleziono nowych plików audio"));
        }
        std::filesystem::remove(desk.folder / "Computer/Żuk/Plain/1 x.mp3");
        const auto model = desk.start();
        QCOMPARE(model->tracks().size(), 4U);
        QVERIFY(model->queued().isEmpty());
        QCOMPARE(desk.settings.texts(QStringLiteral("libraryPaths")).size(), 4);
        const Album album = *model->albums()->front();
        model->forget(album);
        QCOMPARE(desk.settings.texts(QStringLiteral("libraryPaths")).size(), 4 - qsizetype(album.tracks.size()));
        QVERIFY(std::filesystem::exists(album.tracks.front().url));
    }

    void dropsASecondLongJob()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->importURLs({desk.folder / "Computer/Band"}, false, true);
        model->importURLs({desk.folder / "Computer/High"}, false, true);
        model->clearQueue();
        desk.waitForJobs(*model);
        QCOMPARE(model->tracks().size(), 2U);
    }

    void restoresTheViewSettings()
    {
        ModelDesk desk;
        {
            const auto model = desk.start();
            QCOMPARE(model->viewMode(), QStringLiteral("Albumy"));
            QCOMPARE(model->sortMode(), QStringLiteral("Wykonawca"));
            QCOMPARE(model->tileSize(), 170.0);
            model->setViewMode(QStringLiteral("Utwory"));
            model->setSortMode(QStringLiteral("Rok"));
            model->setTileSize(200);
        }
        {
            const auto model = desk.start();
            QCOMPARE(model->viewMode(), QStringLiteral("Utwory"));
            QCOMPARE(model->sortMode(), QStringLiteral("Rok"));
            QCOMPARE(model->tileSize(), 200.0);
            model->setTileSize(-1);
        }
        QCOMPARE(desk.start()->tileSize(), 170.0);
    }

    void remembersTheLookOfADevice()
    {
        ModelDesk desk;
        const auto model = desk.start();
        model->setAppearance(QStringLiteral("classic")); // no device: nothing to remember it for
        const Device device = desk.makeDevice("IPOD", false);
        model->select(device);
        model->setAppearance(QStringLiteral("nano"));
        model->setFinish(QStringLiteral("black"));
        const QString root = Files::text(device.root);
        QCOMPARE(desk.settings.text(QStringLiteral("appearance-") + root), std::optional(QStringLiteral("nano")));
        model->setFinish(QStringLiteral("auto"));
        QVERIFY(!desk.settings.text(QStringLiteral("finish-") + root));
    }

    void filtersAndSorts()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->importURLs({desk.folder / "Computer"}, false, false);
        desk.waitForJobs(*model);
        QCOMPARE(titles(*model), (Titles {"High 10", "Double", "Plain"}));
        QCOMPARE(model->filteredTracks()->size(), 5U);

        model->setSortMode(QStringLiteral("Album"));
        QCOMPARE(titles(*model), (Titles {"Double", "High 10", "Plain"}));
        model->setSortMode(QStringLiteral("Rok"));
        QCOMPARE(titles(*model), (Titles {"High 10", "Double", "Plain"}));
        model->setSortMode(QStringLiteral("Rozmiar"));
        QCOMPARE(titles(*model).front(), std::string("High 10"));
        model->setSortMode(QStringLiteral("unknown"));
        QCOMPARE(titles(*model), (Titles {"High 10", "Double", "Plain"}));

        model->setFormatFilter(QStringLiteral("MP3"));
        QCOMPARE(titles(*model), Titles {"Plain"});
        model->setFormatFilter(QStringLiteral("Pozostałe"));
        QCOMPARE(titles(*model), Titles {});
        model->setFormatFilter(QStringLiteral("FLAC"));
        model->setHiResOnly(true);
        QCOMPARE(titles(*model), Titles {"High 10"});
        model->setHiResOnly(false);
        model->setFormatFilter(QStringLiteral("Wszystko"));

        model->setSearch(QStringLiteral("żUK plain"));
        QCOMPARE(titles(*model), Titles {"Plain"});
        model->setSearch(QStringLiteral("2 y"));
        QCOMPARE(titles(*model), Titles {"Plain"});
        QCOMPARE(model->albums()->front()->tracks.size(), 2U); // the album keeps what does not match
        QCOMPARE(model->filteredTracks()->size(), 1U);
    }

    void knowsHighResolution()
    {
        ModelDesk desk;
        const auto model = desk.start();
        model->setHiResOnly(true);
        Track track;
        for (const auto &[depth, rate, passes] : std::initializer_list<std::tuple<int, int, bool>> {
                 {16, 48000, false}, {16, 48001, true}, {17, 44100, true}, {24, 44100, true}, {0, 0, false}}) {
            track.info.bitDepth = depth;
            track.info.sampleRate = rate;
            QCOMPARE(model->matches(track), passes);
        }
        model->setHiResOnly(false);
        track.info.codec = QStringLiteral("flac");
        model->setFormatFilter(QStringLiteral("Pozostałe"));
        QVERIFY(model->matches(track)); // the comparison is exact
    }

    void showsAlwaysWhatAFreshComputationWouldGive()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        desk.folder.write("IPOD/Music/On device.mp3", "x");
        const auto model = desk.start();
        model->select(desk.makeDevice("IPOD", false));
        QRandomGenerator random(20261122);
        const auto pick = [&](const QStringList &list) { return list[random.bounded(int(list.size()))]; };
        const std::vector<std::function<void()>> changes {
            [&] {
                model->setSearch(pick({QString(), QString(), QString(), QStringLiteral("a"), QStringLiteral("x")}));
            },
            [&] {
                model->setFormatFilter(pick({QStringLiteral("Wszystko"), QStringLiteral("Wszystko"),
                    QStringLiteral("FLAC"), QStringLiteral("Pozostałe")}));
            },
            [&] { model->setHiResOnly(random.bounded(4) == 1); },
            [&] {
                model->setSortMode(pick({QStringLiteral("Album"), QStringLiteral("Rok"), QStringLiteral("Rozmiar"),
                    QStringLiteral("Wykonawca")}));
            },
            [&] { model->setLibraryOnDevice(random.bounded(2) == 1); },
            [&] {
                TextOrder::setLanguage(
                    random.bounded(2) == 1 ? TextOrder::Language::Polish : TextOrder::Language::English);
            },
            [&] {
                model->importURLs(
                    {desk.folder / pick({QStringLiteral("Computer/Band"), QStringLiteral("Computer")}).toStdString()},
                    false, false);
            },
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
            std::vector<Album> albums = AlbumGrouping::albums(model->activeTracks());
            std::erase_if(albums, [&](const Album &album) {
                return std::none_of(
                    album.tracks.begin(), album.tracks.end(), [&](const Track &t) { return model->matches(t); });
            });
            const auto count = std::count_if(model->activeTracks().begin(), model->activeTracks().end(),
                [&](const Track &track) { return model->matches(track); });
            QCOMPARE(model->albums()->size(), albums.size());
            QCOMPARE(model->filteredTrackCount(), std::size_t(count));
            QCOMPARE(model->filteredTracks()->size(), std::size_t(count));
            QCOMPARE(model->filteredTrackCount(), std::size_t(count));
            const auto &shown = *model->albums();
            for (const Album &album : albums) {
                QVERIFY(std::any_of(shown.begin(), shown.end(), [&](const auto &other) { return *other == album; }));
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
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->importURLs({desk.folder / "Computer"}, false, false);
        desk.waitForJobs(*model);
        const Album album = *model->albums()->back();
        QCOMPARE(album.tracks.size(), 2U);
        model->toggleTrack(album.tracks[1]);
        QCOMPARE(model->queue().size(), 1U);
        model->toggle(album); // half of it is there: the rest comes
        QCOMPARE(model->queue().size(), 2U);
        QCOMPARE(model->queueBytes(), album.bytes());
        model->toggle(album);
        QVERIFY(model->queue().empty());
        model->setLibraryOnDevice(true);
        model->toggle(album);
        QVERIFY(model->queued().isEmpty());
        QCOMPARE(model->selectedOnDevice().size(), 2);
        model->forget(album); // not on this side
        QCOMPARE(model->tracks().size(), 5U);
    }

    void transfersWithDiscFoldersAndThenSkips()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->transferQueue();
        QCOMPARE(model->status(), QStringLiteral("Gotowy na Twoją muzykę"));
        model->importURLs({desk.folder / "Computer"}, false, true);
        desk.waitForJobs(*model);
        const Device device = desk.makeDevice("IPOD", false);
        model->select(device);
        model->transferQueue();
        QCOMPARE(model->status(), QStringLiteral("Wgrywam muzykę…"));
        desk.waitForJobs(*model);
        const std::string tail = "\n\nUtwory są dostępne w Files → Music. Jeśli używasz Database, zaktualizuj bazę w "
                                 "menu Rockbox na iPodzie.";
        QCOMPARE(model->alert().value_or(QString()).toStdString(), "Wgrano: 5. Pominięto identyczne: 0." + tail);
        QVERIFY(model->queued().isEmpty());
        QCOMPARE(model->transferred().size(), 5U);
        const auto music = filesBelow(device.root / "Music");
        QCOMPARE(music.size(), 5U);
        QVERIFY(music.contains("Band/Double/CD 2/01 a.flac"));
        QVERIFY(music.contains("abba/High 10/1.flac"));
        QCOMPARE(music.at("Band/Double/CD 1/01 a.flac"), fileBytes(desk.folder / "Computer/Band/Double/CD1/01 a.flac"));

        // One disc alone keeps its disc folder: the plan looks at the whole library.
        std::vector<Track> disc;
        for (const Track &track : model->tracks()) {
            if (track.info.discNumber == 2) {
                disc.push_back(track);
            }
        }
        QCOMPARE(disc.size(), 1U);
        model->transfer(disc);
        desk.waitForJobs(*model);
        QCOMPARE(model->status(), QStringLiteral("Wgrano: 0. Pominięto identyczne: 1."));
        // A track outside the library goes by its own names.
        Track stranger = disc.front();
        stranger.id = QUuid::createUuid();
        stranger.artist = QStringLiteral("Other");
        model->transfer(std::vector {stranger});
        desk.waitForJobs(*model);
        QVERIFY(std::filesystem::exists(device.root / "Music/Other/Double/01 a.flac"));
        QCOMPARE(filesBelow(device.root / "Music").size(), 6U);
    }

    void keepsTheQueueWhenATransferFails()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->importURLs({desk.folder / "Computer"}, false, true);
        desk.waitForJobs(*model);
        model->select(desk.makeDevice("IPOD", false));
        std::filesystem::remove_all(desk.folder / "IPOD/.rockbox");
        model->transferQueue();
        desk.waitForJobs(*model);
        QCOMPARE(model->alert().value_or(QString()),
            QStringLiteral("Ten folder nie zawiera katalogu .rockbox.\n\nCzęść utworów mogła już zostać wgrana. Możesz "
                           "ponowić transfer — identyczne pliki zostaną pominięte."));
        QCOMPARE(model->status(), QStringLiteral("Transfer przerwany"));
        QVERIFY(!model->busy());
        QCOMPARE(model->queued().size(), 5);
        QVERIFY(model->transferred().empty());
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
