// Covers that albums get through the model: on the device, in the store, in the settings and on the tracks.
#include "support/CannedServer.h"
#include "support/FailingDisk.h"
#include "support/ModelDesk.h"

#include "media/pictures/Images.h"
#include "platform/files/Files.h"

#include "artwork/Artwork.h"

#include <QSignalSpy>

namespace {

const QString overridesKey = u"artworkOverrides"_s;
const QString sourcesKey = u"coverSources"_s;
const QString tail = u"\nPrzy pozostałych albumach użyj „Znajdź w sieci…” lub wybierz własny obraz."_s;

std::string picture(const char *name)
{
    return fileBytes(dataFile("images") / name);
}

/// The service's answer: albums of this name, each with an identity of its own.
CannedServer::Answer found(const QByteArray &artist, const QByteArray &title, int count)
{
    QByteArrayList groups;
    for (int i = 0; i < count; ++i) {
        groups.append(R"({"id":"0cd1dd5b-3c5e-4d3a-9f0e-00000000000)" + QByteArray::number(i)
            + R"(","score":100,"title":")" + title + R"(","artist-credit":[{"name":")" + artist + R"("}]})");
    }
    return CannedServer::answer("200 OK", R"({"release-groups":[)" + groups.join(',') + "]}");
}

CannedServer::Answer image()
{
    return CannedServer::answer("200 OK", QByteArray::fromStdString(picture("plain.png")));
}

struct CoverDesk : ModelDesk {
    Device device = makeDevice("IPOD", false);

    /// A track without a cover, unless one is given.
    void addTrack(const std::string &artist, const std::string &album, const std::string &cover = {}) const
    {
        folder.write("IPOD/Music/" + artist + '/' + album + "/1.flac",
            flacWith({"TITLE=One", "ARTIST=" + artist, "ALBUM=" + album}, artist + album, 16, cover));
    }

    void askServer(const CannedServer &server)
    {
        covers = std::make_unique<CoverSearch>(CoverServices {.catalogue = server.root(),
            .site = QUrl(u"https://site.test"_s),
            .archive = server.root(),
            .spacing = std::chrono::milliseconds(1),
            .retryPause = std::chrono::milliseconds(1)});
    }

    /// With the music of the device, or of the same folder as the computer's, read.
    [[nodiscard]] std::unique_ptr<MarluneModel> startWithMusic(bool onDevice)
    {
        auto model = start();
        if (onDevice) {
            model->select(device);
            waitForJobs(*model);
            model->scanDeviceMusic();
        } else {
            model->importURLs({device.root / "Music"}, false, false);
        }
        waitForJobs(*model);
        return model;
    }

    /// Whether tracks, settings and store say the same of the only album, and what they say: has it a new cover?
    [[nodiscard]] bool agreesOnCover(const MarluneModel &model) const
    {
        const Album album = *model.albums()->front();
        const auto stored = settings.textMap(overridesKey);
        const bool hasCover = imageFacts(album.artworkBytes().value()).value().type == ImageFacts::Type::Jpeg;
        if (stored.contains(album.id()) != hasCover || stored.size() != (hasCover ? 2 : 0)) {
            throw std::runtime_error("the settings disagree with the tracks");
        }
        for (const QString &file : stored) {
            if (fileBytes(Files::fromText(file)) != album.artworkBytes()->toStdString()) {
                throw std::runtime_error("the store disagrees with the tracks");
            }
        }
        return hasCover;
    }
};

} // namespace

class CoverWorkflowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsWhatIsMissingAndUnambiguous()
    {
        const auto busy = CannedServer::answer("503 Busy");
        const CannedServer server({found("A", "One", 1), image(), found("B", "Two", 2), found("C", "Other", 1), busy,
            busy, found("E", "Five", 1), CannedServer::answer("404 Not Found")});
        CoverDesk desk;
        desk.askServer(server);
        for (const auto &[artist, album] :
            {std::pair("A", "One"), {"B", "Two"}, {"C", "Three"}, {"D", "Four"}, {"E", "Five"}}) {
            desk.addTrack(artist, album);
        }
        desk.addTrack("F", "Six", picture("plain.jpg"));
        const auto model = desk.startWithMusic(true);
        QStringList told;
        connect(model.get(), &MarluneModel::statusChanged, [&] { told.append(model->status()); });
        model->findMissingCovers();
        desk.run(*model, &MarluneModel::findMissingCovers);
        QCOMPARE(server.asked.size(), 8U);
        const QString result = u"Dodano okładki: 1. Do wyboru ręcznie: 2. Niedostępne: 2."_s;
        QCOMPARE(model->status(), result);
        QCOMPARE(model->alert(), std::optional(result + tail));
        QVERIFY(told.contains(u"Sprawdzono albumy: 4 / 5 · dodano: 1"_s));

        const QByteArray cover = QByteArray::fromStdString(fileBytes(desk.folder / "IPOD/Music/A/One/cover.jpeg"));
        QVERIFY(!Artwork::compatibilityIssue(cover));
        const Album album = *model->albums()->front();
        QCOMPARE(album.artworkBytes(), std::optional(cover));
        QCOMPARE(desk.settings.textMap(sourcesKey).values(),
            QStringList {u"https://site.test/release-group/0cd1dd5b-3c5e-4d3a-9f0e-000000000000"_s});
        const auto stored = desk.settings.textMap(overridesKey);
        QCOMPARE(stored.size(), 2);
        QCOMPARE(fileBytes(Files::fromText(stored.value(album.id()))), cover.toStdString());

        desk.run(*model, &MarluneModel::scanDeviceMusic); // the choice outlives the reading
        QCOMPARE(model->albums()->front()->artworkBytes(), std::optional(cover));
    }

    void endsASearchThatHasLostItsDeviceOrItsWindow()
    {
        const auto lose = [](CoverDesk &desk, MarluneModel &model) {
            desk.found->clear();
            model.volumeUnmounted(desk.device.root);
        };
        const auto exchange = [](CoverDesk &desk, MarluneModel &model) { model.volumeUnmounted(desk.device.root); };
        const auto leave = [](CoverDesk &, MarluneModel &model) { model.endCoverRequests(); };
        // What happens at which request, and what is reported.
        const std::tuple<std::function<void(CoverDesk &, MarluneModel &)>, std::size_t, const char *> rows[] = {
            {lose, 1, "Do wyboru ręcznie: 0. Niedostępne: 3."}, {exchange, 2, "Do wyboru ręcznie: 0. Niedostępne: 3."},
            {leave, 1, "Do wyboru ręcznie: 0. Niedostępne: 0."}};
        for (const auto &row : rows) {
            const CannedServer server({found("A", "x", 1), image()});
            CoverDesk desk;
            desk.device.isVolume = true;
            *desk.found = {desk.device};
            desk.askServer(server);
            for (const char *artist : {"A", "B", "C"}) {
                desk.addTrack(artist, "x");
            }
            const auto model = desk.startWithMusic(true);
            const auto before = filesBelow(desk.device.root);
            QTimer atOnce;
            connect(&atOnce, &QTimer::timeout, [&] {
                if (server.asked.size() == std::get<1>(row)) {
                    atOnce.stop();
                    std::get<0>(row)(desk, *model);
                }
            });
            atOnce.start(0);
            desk.run(*model, &MarluneModel::findMissingCovers);
            QVERIFY(!atOnce.isActive() && server.asked.size() <= 2);
            const QString all = u"Dodano okładki: 0. "_s + QString::fromUtf8(std::get<2>(row));
            const bool hasLeft = model->status() == u"Przerwano. Sprawdzono albumy: 0 z 3. "_s + all;
            QVERIFY(hasLeft ? !model->alert() && &row == &rows[2] : model->alert() == all + tail);
            QVERIFY(filesBelow(desk.device.root) == before);
        }
    }

    void fetchesTheCandidateThatTheUserChose()
    {
        const CannedServer server({CannedServer::answer("404 Not Found"), image()});
        CoverDesk desk;
        desk.askServer(server);
        desk.addTrack("A", "One");
        const auto model = desk.startWithMusic(false);
        CoverCandidate candidate;
        candidate.id = u"0cd1dd5b-3c5e-4d3a-9f0e-000000000000"_s;
        model->downloadCover(candidate, *model->albums()->front());
        desk.waitForJobs(*model);
        QVERIFY(model->status().startsWith(u"Nie udało się pobrać okładki: To wydanie nie ma"_s));
        QVERIFY(!model->alert() && desk.settings.textMap(sourcesKey).isEmpty());
        const QSignalSpy lookups(model.get(), &MarluneModel::coverLookupChanged);
        for (const auto &album : {std::optional(*model->albums()->front()), std::optional<Album>()}) {
            model->setCoverLookup(album);
            model->setCoverLookup(album);
            QVERIFY(model->coverLookup() == album);
        }
        QCOMPARE(lookups.count(), 2);
        model->downloadCover(candidate, *model->albums()->front());
        desk.waitForJobs(*model);
        QCOMPARE(model->status(), u"Pobrano okładkę; zostanie wgrana razem z albumem."_s);
        QVERIFY(desk.agreesOnCover(*model) && desk.settings.textMap(sourcesKey).size() == 1);
    }

    void makesACoverOfWhatTheUserChooses()
    {
        const QString ready = u"Okładka przygotowana; zostanie wgrana razem z albumem."_s;
        const QString failed = u"Nie udało się zapisać okładki"_s;
        CoverDesk desk;
        desk.addTrack("A", "One");
        const auto model = desk.startWithMusic(false);
        const Album album = *model->albums()->front();
        const QString before = model->status();
        const auto choose = [&](const fs::path &file) {
            model->chooseArtwork(album, false);
            desk.answer(*model, file);
        };
        model->chooseArtwork(album, true); // it has none
        QVERIFY(!model->busy());
        choose(desk.folder / "missing.png");
        QVERIFY(model->status() == before && !model->alert());
        choose(desk.folder.write("none.png", "no picture"));
        QCOMPARE(model->status(), failed);
        QCOMPARE(model->alert(), std::optional(u"Nie można odczytać obrazu."_s));
        fs::resize_file(desk.folder.write("film.png", ""), Artwork::maxFileBytes);
        choose(desk.folder / "film.png");
        QCOMPARE(model->alert(), std::optional(u"Obraz jest nieobsługiwany."_s));
        QVERIFY(desk.settings.textMap(overridesKey).isEmpty());

        const auto some = desk.folder.write("some.png", picture("plain.png"));
        model->chooseArtwork(album, false);
        desk.hold(*model, [&] {
            model->importURLs({}, false, false);
            desk.panels.answer({some}); // too late: another job has begun
            QCOMPARE(model->status(), u"Odczytuję albumy…"_s);
        });
        QVERIFY(desk.settings.textMap(overridesKey).isEmpty());
        choose(some);
        QCOMPARE(model->status(), ready);
        QVERIFY(desk.agreesOnCover(*model));
        const auto stored = desk.settings.textMap(overridesKey);
        choose(desk.folder.write("other.png", picture("palette.png"))); // in the place of the first
        QVERIFY(desk.agreesOnCover(*model) && desk.settings.textMap(overridesKey) == stored);

        model->dismissAlert();
        model->chooseArtwork(album, false, true); // on a device that is not there
        desk.answer(*model, desk.folder / "some.png");
        QCOMPARE(model->alert(), std::optional(u"Podłącz iPoda."_s));
        QCOMPARE(model->status(), failed);
    }

    void leavesNoDisagreementWhereverTheDiskFails()
    {
        bool reached = true;
        int installed = 0;
        for (int call = 1; reached; ++call) {
            CoverDesk desk;
            desk.addTrack("A", "One", picture("plain.png"));
            const auto model = desk.startWithMusic(true);
            const auto device = filesBelow(desk.device.root);
            desk.settings.flush();
            {
                const FailingDisk disk(call);
                model->chooseArtwork(*model->albums()->front(), true);
                desk.waitForJobs(*model);
                desk.settings.flush();
                reached = FailingDisk::reached();
            }
            QCoreApplication::processEvents();
            const bool hasCover = desk.agreesOnCover(*model);
            const bool isInstalled = filesBelow(desk.device.root) != device;
            QVERIFY2(isInstalled || !hasCover, std::to_string(call).c_str());
            QVERIFY(hasCover || model->status() == u"Nie udało się zapisać okładki"_s);
            QVERIFY(!holdsPartialFile(desk.folder.path()));
            installed += int(isInstalled);
        }
        QVERIFY(installed > 2); // the store's own failures come after the install
    }

    void repairsWhatIsThereAndGoesOnAfterAFailure()
    {
        CoverDesk desk;
        desk.addTrack("A", "bare");
        const auto model = desk.startWithMusic(true);
        desk.hold(*model, [&] {
            model->backup();
            model->repairAvailableCovers(); // dropped
        });
        QVERIFY(!model->alert());
        desk.run(*model, &MarluneModel::repairAvailableCovers);
        QVERIFY(model->alert()->startsWith(u"Brak dostępnych obrazów do automatycznej naprawy."_s));

        desk.addTrack("B", "broken", "no picture at all");
        desk.addTrack("C", "fine", picture("plain.jpg"));
        desk.addTrack("D", "large", picture("progressive.jpg"));
        desk.addTrack("E", "other", picture("plain.png"));
        for (const char *odd : {"IPOD/Music/F/caf\xE8/1.flac", "IPOD/Music/F/caf\xE9/1.flac"}) {
            desk.folder.write(odd, flacWith({"ARTIST=F", "ALBUM=caf"}, odd, 16, picture("plain.png")));
        }
        desk.run(*model, &MarluneModel::scanDeviceMusic);
        model->repairAvailableCovers();
        desk.run(*model, &MarluneModel::findMissingCovers);
        QCOMPARE(model->status(), u"Naprawione albumy: 5. Nie udało się naprawić: 1."_s);
        QCOMPARE(model->alert(),
            std::optional(model->status()
                + u"\nPoprzednie obrazy z iPoda mają kopię na Macu.\nBrakujące lub nieczytelne obrazy "
                  "wymagają wyboru nowej okładki."_s));
        for (const char *place : {"C/fine", "D/large", "E/other"}) { // the fine one had no file beside the music
            const std::string cover = fileBytes(desk.folder / "IPOD/Music" / place / "cover.jpeg");
            QVERIFY(!Artwork::compatibilityIssue(QByteArray::fromStdString(cover)));
        }
        const QStringList stored = desk.settings.textMap(overridesKey).values();
        QCOMPARE(QSet<QString>(stored.begin(), stored.end()).size(), 5); // whatever bytes tell two names apart

        // Another disk that nobody reports comes to the place behind the first album: it gets nothing.
        const std::filesystem::path root = desk.device.root;
        std::filesystem::remove_all(root / "Music/B");
        desk.addTrack("G", "first", picture("progressive.jpg"));
        desk.addTrack("H", "second", picture("progressive.jpg"));
        model->scanDeviceMusic();
        desk.waitForJobs(*model);
        std::filesystem::copy(root, desk.folder / "Other", std::filesystem::copy_options::recursive);
        const auto before = filesBelow(desk.folder / "Other");
        connect(model.get(), &MarluneModel::progressChanged, [&] {
            if (model->progress() > 0 && !std::filesystem::exists(desk.folder / "away")) {
                std::filesystem::rename(root, desk.folder / "away");
                std::filesystem::rename(desk.folder / "Other", root);
            }
        });
        model->repairAvailableCovers();
        desk.waitForJobs(*model);
        QCOMPARE(model->status(), QStringLiteral("Naprawione albumy: 1. Nie udało się naprawić: 1."));
        QVERIFY(filesBelow(root) == before);
    }
};

QTEST_GUILESS_MAIN(CoverWorkflowTest)
#include "CoverWorkflowTest.moc"
