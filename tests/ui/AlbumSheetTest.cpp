// What the sheets about one album show and do: its tracks by disc, its cover, and the search for another one.
#include "support/CannedServer.h"
#include "support/ModelDesk.h"
#include "ui/library/AlbumSheetPresenter.h"
#include "ui/words/Localization.h"

#include <QAbstractItemModelTester>

namespace {

const QString askedForNames = u"Podaj wykonawcę i tytuł albumu."_s;

CannedServer::Answer found(const QByteArrayList &ids)
{
    QByteArrayList groups;
    for (const QByteArray &id : ids) {
        groups.append(R"({"id":")" + id
            + R"(","score":97,"title":"T\n<b>","artist-credit":[{"name":"A"}],"first-release-date":"1980"})");
    }
    return CannedServer::answer("200 OK", R"({"release-groups":[)" + groups.join(',') + "]}");
}

QByteArray uuid(int number)
{
    return "0cd1dd5b-3c5e-4d3a-9f0e-00000000000" + QByteArray::number(number);
}

CannedServer::Answer silence()
{
    return {.bytes = {}, .then = CannedServer::Then::Stay};
}

struct Sheet {
    explicit Sheet(std::vector<CannedServer::Answer> answers = {})
        : server(std::move(answers))
    {
    }

    void addTrack(const std::string &file, const std::vector<std::string> &comments)
    {
        std::vector<std::string> all {"ARTIST=Różni wykonawcy", "ALBUM=b"};
        all.insert(all.end(), comments.begin(), comments.end());
        desk.folder.write("IPOD/Music/b/" + file, flacWith(all, file));
    }
    void import() { ModelDesk::import(*model, desk.folder / "IPOD/Music"); }
    void open() { model->setOpenAlbum(*model->albums()->front()); }

    [[nodiscard]] QString text(int row, DiscTrackListModel::Role role)
    {
        return album.tracks()->data(album.tracks()->index(row), role).toString();
    }
    [[nodiscard]] QVariant result(int row, CoverResultModel::Role role)
    {
        return search.results()->data(search.results()->index(row), role);
    }

    [[nodiscard]] static std::unique_ptr<CoverSearch> searchAt(const CannedServer &server)
    {
        return std::make_unique<CoverSearch>(CoverServices {.catalogue = server.root(),
            .site = QUrl(u"https://site.test"_s),
            .archive = server.root(),
            .spacing = std::chrono::milliseconds(1),
            .retryPause = std::chrono::milliseconds(1)});
    }

    CannedServer server;
    ModelDesk desk;
    Device device = desk.makeDevice("IPOD", false);
    bool prepared = (desk.covers = searchAt(server), true);
    std::unique_ptr<MarluneModel> model = desk.start();
    std::shared_ptr<CoverStore> covers = std::make_shared<CoverStore>();
    AlbumSheetPresenter album {*model, covers};
    CoverSearchPresenter &search = *album.coverSearch();
    bool following = (album.followOpenAlbum(), true);
};

} // namespace

class AlbumSheetTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheAlbumThatTheLibraryHasNow()
    {
        Sheet sheet;
        const QAbstractItemModelTester tester(sheet.album.tracks());
        sheet.addTrack("1.flac", {"TITLE=a\n<b>", "TRACKNUMBER=7", "DISCNUMBER=1"});
        sheet.addTrack("2.flac", {"TITLE=" + std::string(10'000, 'x'), "TRACKNUMBER=2147483648", "DISCNUMBER=2"});
        sheet.addTrack("c.flac", {"TITLE=c", "DISCNUMBER=2"});
        sheet.import();
        sheet.open();
        const DiscTrackListModel &tracks = *sheet.album.tracks();
        QVERIFY(sheet.album.wanted() && sheet.album.available() && sheet.album.cover().isEmpty());
        QVERIFY2(sheet.album.facts().startsWith(u"Utwory: 3 · 0:03 · "_s), qPrintable(sheet.album.facts()));
        QCOMPARE(sheet.album.format(), u"FLAC · 16-bit / 44.1 kHz"_s);
        AppLocalizer::setLanguage(u"en"_s);
        const QString artist = sheet.album.artist();
        AppLocalizer::setLanguage(u"pl"_s);
        QCOMPARE(artist, u"Various artists"_s);

        QCOMPARE(tracks.rowCount(), 5);
        QCOMPARE(sheet.text(2, DiscTrackListModel::HeadingRole), u"2 · Utwory: 2"_s);
        QCOMPARE(sheet.text(1, DiscTrackListModel::TitleRole), u"a\uFFFD<b>"_s);
        QStringList numbers;
        for (const int row : {1, 3, 4}) {
            numbers.append(sheet.text(row, DiscTrackListModel::NumberRole));
            QVERIFY(sheet.text(row, DiscTrackListModel::ArtistRole).isEmpty());
        }
        QCOMPARE(numbers, (QStringList {u"07"_s, u"—"_s, u"2147483648"_s}));
        QCOMPARE(
            (std::array {tracks.trackAt(0, -1), tracks.trackAt(2, -1), tracks.trackAt(2, 1), tracks.trackAt(9, 1)}),
            (std::array {1, 1, 3, 4}));

        const QSignalSpy resets(&tracks, &QAbstractItemModel::modelReset);
        sheet.album.tracks()->toggle(1);
        QTRY_VERIFY(tracks.data(tracks.index(1), DiscTrackListModel::QueuedRole).toBool());
        QVERIFY(!sheet.album.queued());
        sheet.album.toggleQueue();
        QVERIFY(sheet.album.queued() && sheet.model->queued().size() == 3);
        sheet.album.chooseCover(false);
        sheet.desk.answer(*sheet.model, dataFile("images/plain.png"));
        QTRY_VERIFY(sheet.album.coverFacts().startsWith(u"500 × 500 · JPEG · "_s));
        QVERIFY(!sheet.album.cover().isEmpty() && !sheet.album.hasSource());
        QCOMPARE(sheet.album.status(), u"Okładka przygotowana; zostanie wgrana razem z albumem."_s);
        QCOMPARE(resets.count(), 0); // the place in the list stays

        sheet.model->forget(*sheet.model->openAlbum());
        QTRY_VERIFY(sheet.album.wanted() && !sheet.album.available());
        sheet.import();
        QTRY_VERIFY(sheet.album.available());
        QCOMPARE(resets.count(), 0); // nor after another reading
        sheet.album.dismiss();
        QVERIFY(!sheet.album.wanted() && !sheet.model->openAlbum());
    }

    void aSideThatIsNotShownHasItsAlbumsToo()
    {
        Sheet sheet;
        sheet.addTrack("1.flac", {});
        sheet.import();
        AlbumSheetPresenter ofDevice(*sheet.model, sheet.covers, true);
        ofDevice.open(*sheet.model->albums()->front());
        QVERIFY(!ofDevice.available());
        sheet.model->select(sheet.device);
        ModelDesk::waitForJobs(*sheet.model);
        ModelDesk::run(*sheet.model, &MarluneModel::scanDeviceMusic);
        sheet.model->setLibraryOnDevice(false);
        QTRY_VERIFY(ofDevice.available() && ofDevice.deviceSide() && ofDevice.canTransfer());
        ofDevice.toggleQueue();
        QVERIFY(ofDevice.queued() && sheet.model->queued().isEmpty());
        ofDevice.tracks()->toggle(0);
        QVERIFY(!ofDevice.queued() && sheet.model->selectedOnDevice().isEmpty());
        sheet.desk.folder.write("picture.png", fileBytes(dataFile("images/plain.png")));
        ofDevice.chooseCover(false);
        sheet.desk.answer(*sheet.model, sheet.desk.folder / "picture.png");
        QVERIFY(sheet.model->deviceTracks().front().artwork && !sheet.model->tracks().front().artwork);
        QTRY_VERIFY(!ofDevice.cover().isEmpty());
        sheet.model->volumeUnmounted(sheet.device.root);
        QTRY_VERIFY(!ofDevice.available() && ofDevice.wanted());
    }

    void aSearchTellsHowItEnded_data()
    {
        QTest::addColumn<CannedServer::Answer>("answer");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("message");
        const QString tail = u". Brak grafiki oznacza, że wydanie nie ma okładki w archiwum."_s;
        QTest::newRow("results") << found({uuid(1), uuid(2)}) << u"A"_s << QString(u"Wyniki: 2"_s + tail);
        QTest::newRow("none") << found({}) << u"A"_s
                              << u"Brak wyników. Popraw nazwy lub wybierz obraz ręcznie w albumie."_s;
        QTest::newRow("refused")
            << CannedServer::answer("404 Not Found") << u"A"_s
            << u"Katalog okładek jest chwilowo niedostępny (HTTP 404). Spróbuj ponownie później."_s;
        QTest::newRow("nonsense") << CannedServer::answer("200 OK", "<html>") << u"A"_s
                                  << u"Nie można odczytać odpowiedzi katalogu okładek."_s;
        QTest::newRow("no name") << found({uuid(1)}) << u" \n"_s << askedForNames;
    }

    void aSearchTellsHowItEnded()
    {
        QFETCH(CannedServer::Answer, answer);
        QFETCH(QString, artist);
        QFETCH(QString, message);
        Sheet sheet({answer});
        sheet.addTrack("1.flac", {});
        sheet.import();
        sheet.open();
        sheet.album.findCover();
        QVERIFY(sheet.search.wanted() && sheet.search.artist() == u"Różni wykonawcy"_s
            && sheet.search.albumTitle() == u"b"_s);
        sheet.search.setArtist(artist);
        QTest::qWait(20);
        QVERIFY(sheet.server.asked.empty()); // nobody has asked for it yet
        sheet.search.search();
        QTRY_VERIFY(!sheet.search.searching());
        QCOMPARE(sheet.search.message(), message);
        QCOMPARE(sheet.search.results()->count(), message.startsWith(u"Wyniki"_s) ? 2 : 0);
    }

    void whatASearchHasOvertakenIsEndedAndNeverShown()
    {
        Sheet sheet({silence(), found({uuid(1)}), silence()});
        sheet.addTrack("1.flac", {});
        sheet.import();
        sheet.open();
        sheet.album.findCover();
        sheet.search.search();
        QTRY_COMPARE(sheet.server.asked.size(), 1U);
        sheet.search.setAlbumTitle(u"other"_s);
        sheet.search.search();
        QTRY_COMPARE(sheet.search.results()->count(), 1);
        QTRY_COMPARE(sheet.server.connected, 0);
        sheet.search.setAlbumTitle(u"third"_s);
        sheet.search.search();
        QCOMPARE(sheet.search.results()->count(), 0);
        QTRY_COMPARE(sheet.server.asked.size(), 3U);
        sheet.album.dismiss(); // the sheet below takes the search with it
        QTRY_COMPARE(sheet.server.connected, 0);
        QVERIFY(!sheet.search.wanted() && !sheet.search.searching() && sheet.search.message().isEmpty());
    }

    void picturesComeForRowsInSightTwoAtATime()
    {
        const QByteArray picture = QByteArray::fromStdString(fileBytes(dataFile("images/plain.png")));
        Sheet sheet({found({uuid(0), uuid(1), uuid(2), "../x", uuid(4)})});
        sheet.addTrack("1.flac", {});
        sheet.import();
        sheet.open();
        sheet.album.findCover();
        sheet.search.search();
        CoverResultModel &rows = *sheet.search.results();
        QTRY_COMPARE(rows.count(), 5);
        const QAbstractItemModelTester tester(&rows);
        QCOMPARE(sheet.result(0, CoverResultModel::TitleRole).toString(), u"T\uFFFD<b>"_s);
        QCOMPARE(sheet.result(0, CoverResultModel::FactsRole).toString(), u"A · 1980 · zgodność 97%"_s);
        QList<QByteArray> asked;
        sheet.server.answering = [&](const CannedServer::Asked &request) {
            asked.append(request.target);
            return request.target.contains(uuid(0)) ? CannedServer::answer("404 Not Found")
                : request.target.contains(uuid(1))
                ? CannedServer::Answer {.bytes = "HTTP/1.1 200 OK\r\n\r\n" + picture, .padding = 2'000'000}
                : request.target.contains(uuid(2)) ? CannedServer::answer("200 OK", picture)
                                                   : silence();
        };
        for (const int row : {0, 1, 2, 3, 0}) {
            rows.wantPicture(row);
        }
        QVERIFY(asked.isEmpty()); // they go out one after the other
        QTRY_VERIFY(!sheet.result(3, CoverResultModel::AwaitedRole).toBool()
            && !sheet.result(2, CoverResultModel::AwaitedRole).toBool());
        QCOMPARE(asked.size(), 3);
        QVERIFY(!asked.last().contains(uuid(0)) && sheet.server.connected <= 2);
        QVERIFY(sheet.covers->find(sheet.result(2, CoverResultModel::PictureRole).toString()) == picture);
        for (const int row : {0, 1, 3}) { // not there, larger than a preview is, no identifier
            QVERIFY2(sheet.result(row, CoverResultModel::PictureRole).toString().isEmpty(),
                qPrintable(QString::number(row)));
        }
        rows.wantPicture(4);
        QTRY_COMPARE(asked.size(), 4);
        sheet.search.dismiss();
        QTRY_COMPARE(sheet.server.connected, 0);
        QCOMPARE(sheet.covers->size(), 0);
    }

    void aDownloadClosesTheSearchAndAFailureSaysWhy()
    {
        const auto picture
            = CannedServer::answer("200 OK", QByteArray::fromStdString(fileBytes(dataFile("images/plain.png"))));
        Sheet sheet({found({uuid(1)}), CannedServer::answer("404 Not Found"), picture});
        sheet.addTrack("1.flac", {});
        sheet.import();
        CoverSearchPresenter ofPage(*sheet.model, sheet.covers); // as another page opens it
        ofPage.followCoverLookup();
        sheet.open();
        sheet.album.findCover();
        sheet.search.search();
        QTRY_COMPARE(sheet.search.results()->count(), 1);
        sheet.search.download(0);
        QVERIFY(sheet.search.downloading() && !sheet.search.canDownload());
        ModelDesk::waitForJobs(*sheet.model);
        QVERIFY(sheet.search.wanted() && !sheet.search.downloading());
        QVERIFY2(sheet.search.message().startsWith(u"Nie udało się pobrać okładki: To wydanie"_s),
            qPrintable(sheet.search.message()));
        sheet.model->setCoverLookup(*sheet.model->albums()->front());
        QVERIFY(ofPage.wanted());
        sheet.search.download(0);
        ModelDesk::waitForJobs(*sheet.model);
        QVERIFY(!sheet.search.wanted() && ofPage.wanted());
        QTRY_VERIFY(!sheet.album.cover().isEmpty() && sheet.album.hasSource());
        ofPage.dismiss();
        QVERIFY(!sheet.model->coverLookup());

        sheet.album.findCover();
        sheet.search.search(); // remembered: it takes no time
        QTRY_COMPARE(sheet.search.results()->count(), 1);
        sheet.model->forget(*sheet.model->openAlbum());
        sheet.search.download(0);
        QCOMPARE(sheet.search.message(), u"Album nie jest już dostępny w tej bibliotece."_s);
    }
};

QTEST_GUILESS_MAIN(AlbumSheetTest)
#include "AlbumSheetTest.moc"
