// The library, what is shown of it, the queue and the transfer.
#include "support/ModelDesk.h"
#include "support/SampleTracks.h"

#include "library/AlbumGrouping.h"
#include "platform/Files.h"
#include "platform/TextOrder.h"

#include <QRandomGenerator>

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
        flacWith({"TITLE=Wide", "ARTIST=abba", "ALBUM=High 10", "DATE=2020-01"}, std::string(1000, 'x'), 24));
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
        {
            const HeldJobs held;
            model->importURLs({desk.folder / "Computer/Band"}, false, true);
            model->importURLs({desk.folder / "Computer/High"}, false, true);
        }
        desk.waitForJobs(*model);
        QCOMPARE(model->tracks().size(), 2U);
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
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->importURLs({desk.folder / "Computer"}, false, false);
        desk.waitForJobs(*model);
        QCOMPARE(model->filteredTracks()->size(), 5U);
        const std::pair<const char *, Titles> orders[] = {{"Album", {"Double", "High 10", "Plain"}},
            {"Rok", {"High 10", "Double", "Plain"}}, {"unknown", {"High 10", "Double", "Plain"}}};
        for (const auto &[mode, expected] : orders) {
            model->setSortMode(QString::fromUtf8(mode));
            QCOMPARE(titles(*model), expected);
        }
        struct Row {
            const char *format;
            bool highResolution;
            const char *search;
            Titles shown;
        };
        for (const Row &row :
            {Row {"MP3", false, "", {"Plain"}}, Row {"Pozostałe", false, "", {}}, Row {"FLAC", true, "", {"High 10"}},
                Row {"Wszystko", false, "żUK plain", {"Plain"}}, Row {"Wszystko", false, "2 y", {"Plain"}}}) {
            model->setFormatFilter(QString::fromUtf8(row.format));
            model->setHiResOnly(row.highResolution);
            model->setSearch(QString::fromUtf8(row.search));
            QCOMPARE(titles(*model), row.shown);
        }
        QCOMPARE(model->albums()->front()->tracks.size(), 2U); // the album keeps what does not match
        QCOMPARE(model->filteredTracks()->size(), 1U);
    }

    void knowsHighResolution()
    {
        for (const auto &[depth, rate, high] : std::initializer_list<std::tuple<int, int, bool>> {
                 {16, 48000, false}, {16, 48001, true}, {17, 44100, true}, {24, 44100, true}, {0, 0, false}}) {
            AudioInfo info;
            info.bitDepth = depth;
            info.sampleRate = rate;
            QCOMPARE(isHighResolution(info), high);
        }
    }

    void showsAlwaysWhatAFreshComputationWouldGive()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        desk.folder.write("IPOD/Music/On device.mp3", "x");
        const auto model = desk.start();
        model->select(desk.makeDevice("IPOD", false));
        QRandomGenerator random(20261122);
        const auto pick = [&](const std::vector<const char *> &list) {
            return QString::fromUtf8(list[std::size_t(random.bounded(int(list.size())))]);
        };
        const QString computer = Files::text(desk.folder / "Computer");
        const std::vector<std::function<void()>> changes {
            [&] { model->setSearch(pick({"", "", "", "a", "x"})); },
            [&] { model->setFormatFilter(pick({"Wszystko", "Wszystko", "FLAC", "Pozostałe"})); },
            [&] { model->setHiResOnly(random.bounded(4) == 1); },
            [&] { model->setSortMode(pick({"Album", "Rok", "Rozmiar", "Wykonawca"})); },
            [&] { model->setLibraryOnDevice(random.bounded(2) == 1); },
            [&] { TextOrder::setLanguage(TextOrder::Language(random.bounded(2))); },
            [&] { model->importURLs({Files::fromText(computer + pick({"/Band", ""}))}, false, false); },
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

    void transfersByAlbumAndDisc()
    {
        ModelDesk desk;
        writeLibrary(desk.folder);
        const auto model = desk.start();
        model->importURLs({desk.folder / "Computer"}, false, true);
        desk.waitForJobs(*model);
        model->transferQueue(); // there is no device yet
        QVERIFY(!model->busy());
        const Device device = desk.makeDevice("IPOD", false);
        model->select(device);
        model->transferQueue();
        desk.waitForJobs(*model);
        QVERIFY(model->queued().isEmpty());
        QCOMPARE(model->transferred().size(), 5U);
        const auto music = filesBelow(device.root / "Music");
        QCOMPARE(music.size(), 5U);
        QVERIFY(music.contains("abba/High 10/1.flac"));
        QCOMPARE(music.at("Band/Double/CD 1/01 a.flac"), fileBytes(desk.folder / "Computer/Band/Double/CD1/01 a.flac"));

        // One disc alone keeps its disc folder: the plan looks at the whole library.
        const auto disc = std::find_if(model->tracks().begin(), model->tracks().end(),
            [](const Track &track) { return track.info.discNumber == 2; });
        Track stranger = *disc;
        model->transfer(std::vector {*disc});
        desk.waitForJobs(*model);
        QCOMPARE(model->status(), QStringLiteral("Wgrano: 0. Pominięto identyczne: 1."));
        // A track outside the library goes by its own names.
        stranger.id = QUuid::createUuid();
        stranger.artist = QStringLiteral("Other");
        model->transfer(std::vector {stranger});
        desk.waitForJobs(*model);
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
