// What the pages get from their presenters, over a real model.
#include "platform/MarluneError.h"
#include "support/ModelDesk.h"
#include "ui/backups/BackupsPresenter.h"
#include "ui/device/DevicePresenter.h"
#include "ui/guide/HandbookDocument.h"
#include "ui/guide/HandbookText.h"
#include "ui/library/LibraryPresenter.h"
#include "ui/playlists/PlaylistsPresenter.h"
#include "ui/quality/QualityPresenter.h"
#include "ui/shell/DesktopPanels.h"
#include "ui/shell/ShellPresenter.h"
#include "ui/themes/ThemesPresenter.h"
#include "ui/words/Localization.h"

#include <QAbstractItemModelTester>
#include <QDesktopServices>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace {

struct Pages {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    ShellPresenter shell {*model};
    LibraryPresenter library {*model, std::make_shared<CoverStore>()};
    PlaylistsPresenter playlists {*model};
    BackupsPresenter backups {*model};
    QualityPresenter quality {*model};
};

QStringList shownIn(const FileListModel &rows)
{
    QStringList shown;
    for (int row = 0; row < rows.rowCount(); ++row) {
        shown.append(rows.data(rows.index(row), FileListModel::NameRole).toString() + u" | "_s
            + rows.data(rows.index(row), FileListModel::DetailRole).toString());
    }
    return shown;
}

} // namespace

class PresenterTest : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE void take(const QUrl &address) { m_opened.append(address); }

private:
    QList<QUrl> m_opened; ///< by the desktop, as far as the program can tell

private Q_SLOTS:
    void theFrameTellsOfQueueAndDevice()
    {
        Pages pages;
        pages.desk.folder.write("music/a.flac", flacWith({}));
        pages.model->importURLs({pages.desk.folder / "music"}, false, true);
        QTRY_VERIFY(pages.shell.queueLine().startsWith(u"1 utworów · "_s));
        QVERIFY(pages.shell.canClearQueue() && !pages.shell.canTransfer());
        *pages.desk.found = {pages.desk.makeDevice("FIRST", true), pages.desk.makeDevice("SECOND", true)};
        pages.desk.found->back().total = 160'000'000'000;
        pages.desk.found->back().available = 40'000'000'000;
        pages.model->refresh();
        QTRY_COMPARE(pages.shell.offeredDevices().size(), 2);
        for (const int place : {2, -1, 1}) {
            QVERIFY(!pages.model->device());
            pages.shell.selectOffered(place);
        }
        QTRY_VERIFY(pages.shell.offeredDevices().isEmpty() && pages.shell.canTransfer());
        QCOMPARE(pages.shell.deviceSpace().simplified(), u"160,00 GB · 40,00 GB wolne"_s);
        QCOMPARE(pages.shell.usedShare(), 0.75);
        pages.desk.found->back().available = 120'000'000'000;
        pages.model->refresh(); // follows the disk
        QTRY_COMPARE(pages.shell.usedShare(), 0.25);
        QVERIFY(pages.shell.canEject());
        const QSignalSpy changes(&pages.shell, &ShellPresenter::changed);
        const HeldJobs held;
        pages.model->makePlaylist();
        QTRY_VERIFY(changes.count() > 0 && !pages.shell.canEject());
    }

    void theDevicesPageHasAWordForWhatIsNotKnown()
    {
        Pages pages;
        DevicePresenter page(*pages.model);
        pages.model->setSection(Section::Device);
        const Device bare = pages.desk.makeDevice("BARE", false);
        pages.desk.folder.write("BARE/.rockbox/rockbox-info.txt", "");
        pages.model->select(bare);
        QTRY_COMPARE(page.facts().join(u'|'),
            u"BARE|Nieznany|Nieznana|Nieznane|Nieznany|%1|Odczyt i zapis|Domyślny|Domyślny"_s.arg(
                page.facts().value(5)));
        QCOMPARE(page.connection() + page.musicCount(), u"FOLDER TESTOWYDo odczytania"_s);

        const Device device = pages.desk.makeDevice("IPOD", true);
        pages.desk.folder.write("IPOD/.rockbox/rockbox-info.txt", "Target: ipodvideo\nMemory: 64\nCPU: <b>arm</b>\n");
        pages.desk.folder.write("IPOD/.rockbox/config.cfg", "font: /.rockbox/fonts/12-Nimbus.fnt\n");
        pages.model->select(device);
        QTRY_COMPARE(page.facts().mid(1, 4), QStringList({u"ipodvideo"_s, u"Nieznana"_s, u"<b>arm</b>"_s, u"64 MB"_s}));
        QCOMPARE(page.facts().value(7), u"12-Nimbus.fnt"_s);
        QCOMPARE(page.modelName() + page.chosenModel(), u"iPod Video · 5. generacjiAutomatycznie z Rockbox"_s);
        page.chooseModel(u"iPod mini · 2. generacji"_s);
        QCOMPARE(page.chosenFinish(), u"Niebieski"_s); // the model's own
        page.chooseFinish(u"Czarny z czerwonym kołem"_s);
        page.setDescription(u"iFlash"_s);
        QCOMPARE(page.modelName() + page.chosenModel(), u"iPod mini · 2. generacjiiPod mini · 2. generacji"_s);
        QCOMPARE(pages.model->deviceFinish() + page.description(), u"u2iFlash"_s);
        page.chooseModel(page.models().front());
        page.setDescription({});
        QCOMPARE(page.modelName() + page.description(), u"iPod Video · 5. generacji"_s);
    }

    void theWindowWaitsForWorkAndForItsLastWord()
    {
        Pages pages;
        QVERIFY(pages.shell.requestClose());
        pages.desk.ejector = [](const fs::path &) { throw MarluneError(u"Zajęty."_s); };
        pages.model->select(pages.desk.makeDevice("IPOD", true));
        const QSignalSpy closes(&pages.shell, &ShellPresenter::mayCloseNow);
        {
            const HeldJobs held;
            pages.model->eject();
            QVERIFY(!pages.shell.requestClose());
            pages.shell.stayOpen();
            QVERIFY(!pages.shell.closing());
            QVERIFY(!pages.shell.requestClose());
            QVERIFY(pages.shell.closing());
        }
        QTRY_VERIFY(pages.model->alert());
        QTest::qWait(20);
        QCOMPARE(closes.count(), 0);
        pages.model->dismissAlert();
        QTRY_COMPARE(closes.count(), 1);
        QVERIFY(!pages.shell.closing());
    }

    void findingsAreOfTheSideAndTheFilesThatAreThereNow()
    {
        Pages pages;
        IssueListModel &rows = *pages.quality.issues();
        const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        pages.model->setSection(Section::Quality);
        const auto file = pages.desk.folder.write("music/a.flac", flacWith({"TITLE=t", "ARTIST=a", "ALBUM=b"}));
        pages.model->importURLs({pages.desk.folder / "music"}, false, false);
        QTRY_COMPARE(rows.rowCount(), 1); // it has no cover
        pages.quality.openAlbum(0);
        QVERIFY(pages.model->openAlbum() && pages.model->openAlbum()->title == u"b"_s);
        fs::remove(file);
        pages.model->checkDuplicates(); // a job's end is a reason to look again
        QTRY_COMPARE(rows.rowCount(), 2);
        QCOMPARE(rows.data(rows.index(1), IssueListModel::KindRole).toString(), u"Pliki"_s);
        bool passedForClean = false;
        connect(&pages.quality, &QualityPresenter::changed, &pages.quality,
            [&] { passedForClean = passedForClean || (pages.quality.clean() && rows.rowCount() == 0); });
        {
            const HeldJobs held({JobPriority::Utility});
            pages.model->setSection(Section::Music);
            pages.model->setSection(Section::Quality);
            QTest::qWait(20); // until the inspection waits for its turn
            pages.model->setLibraryOnDevice(true);
            QVERIFY(rows.rowCount() == 0 && pages.quality.withoutMusic());
            pages.model->setLibraryOnDevice(false);
            QTest::qWait(20);
        }
        QTRY_COMPARE(rows.rowCount(), 2);
        QVERIFY(!passedForClean); // by the inspection that was overtaken
    }

    void findingsWaitForTheEndOfARepair()
    {
        Pages pages;
        IssueListModel &rows = *pages.quality.issues();
        const std::string picture = fileBytes(dataFile("images/plain.png"));
        for (const std::string album : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
            pages.desk.folder.write(
                "music/" + album + "/1.flac", flacWith({"TITLE=t", "ARTIST=a", "ALBUM=" + album}, album, 16, picture));
        }
        pages.model->setSection(Section::Quality);
        pages.model->importURLs({pages.desk.folder / "music"}, false, false);
        QTRY_COMPARE(rows.rowCount(), 8);
        bool changedMeanwhile = false;
        connect(&rows, &QAbstractItemModel::rowsRemoved, &rows,
            [&] { changedMeanwhile = changedMeanwhile || pages.model->busy(); });
        pages.model->repairAvailableCovers();
        QTRY_COMPARE(rows.rowCount(), 0);
        QVERIFY(!changedMeanwhile);
    }

    void playlistsAreCountedWhileTheirPageIsShown()
    {
        Pages pages;
        FileListModel &rows = *pages.playlists.playlists();
        const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (const char *name : {"a\nb\xE2\x80\xA8.m3u8", "caf\xE9\xE2\x80\xAE.m3u"}) {
            pages.desk.folder.write(fs::path("IPOD/Playlists") / name, "#EXTM3U\nx\ny\n");
        }
        const auto written = [&](const char *text) { pages.desk.folder.write("IPOD/Playlists/c.m3u8", text); };
        written("x");
        pages.model->select(pages.desk.makeDevice("IPOD", true));
        pages.desk.waitForJobs(*pages.model);
        QCOMPARE(rows.rowCount(), 0); // nobody sees them
        pages.model->setSection(Section::Playlists);
        const QString odd = u"a\uFFFDb\uFFFD | Utwory: 2;caf\uFFFD\uFFFD | Utwory: 2"_s;
        const auto shown = [&](const QString &last) {
            return shownIn(rows) == (odd.section(u';', 0, 0) + u';' + last + u';' + odd.section(u';', 1)).split(u';');
        };
        QTRY_VERIFY(shown(u"c | Utwory: 1"_s));
        pages.model->setSection(Section::Music);
        written("x\ny\nz");
        pages.desk.waitForJobs(*pages.model);
        QVERIFY(shown(u"c | Utwory: 1"_s));
        {
            const HeldJobs held({JobPriority::Utility});
            pages.model->setSection(Section::Playlists);
            QTest::qWait(20);
            pages.model->setSection(Section::Music); // before it was looked at
        }
        pages.desk.waitForJobs(*pages.model);
        QVERIFY(shown(u"c | Utwory: 1"_s));
        fs::remove(pages.desk.folder / "IPOD/Playlists/c.m3u8");
        fs::create_symlink("nowhere", pages.desk.folder / "IPOD/Playlists/c.m3u8");
        pages.model->setSection(Section::Playlists);
        QTRY_VERIFY(shown(u"c | Nie udało się odczytać"_s));
        pages.model->volumeUnmounted(pages.desk.folder / "IPOD");
        QTRY_COMPARE(rows.rowCount(), 0);
    }

    void copiesTellWhatTheyAreOfWhenTheyWereMadeAndTheirSize()
    {
        Pages pages;
        const fs::path backups = "data/Marlune/Backups";
        pages.model->setSection(Section::Backups);
        for (const char *name : {"2026-11-23_14-05-09_3F2A9C", "2026-13-01_00-00-00_X", "Covers-1"}) {
            pages.desk.folder.write(backups / name / "a/x", std::string(1500, 'x'));
        }
        pages.model->refresh();
        const auto made = [](const QString &text) {
            return QRegularExpression(u"^"_s + text + u"\\w+, \\d+ \\w+ \\d{4}, \\d+:\\d\\d · 2.kB$"_s,
                QRegularExpression::UseUnicodePropertiesOption);
        };
        QTRY_VERIFY(shownIn(*pages.backups.backups()).join(u"").count(u"kB"_s) == 3);
        const QStringList shown = shownIn(*pages.backups.backups());
        QVERIFY(shown[0].contains(made(u"Covers-1 \\| Okładki · "_s)));
        QVERIFY(shown[1].contains(made(u"2026-13-01_00-00-00_X \\| "_s))); // no such date: the folder's own
        QVERIFY2(shown[2].startsWith(
                     u"2026-11-23_14-05-09_3F2A9C | Ustawienia i motywy · poniedziałek, 23 listopada 2026, 14:05 · "_s),
            qPrintable(shown[2]));
        pages.model->setSection(Section::Music);
        pages.desk.folder.write(
            backups / "Covers-1/a/x", std::string(9'000'000, 'x')); // the folder itself stays as it is
        pages.model->setSection(Section::Backups);
        QTRY_VERIFY(shownIn(*pages.backups.backups())[0].endsWith(u"MB"_s));
    }

    void aDropOfAnythingAddsTheMusicInIt()
    {
        Pages pages;
        const fs::path folder = pages.desk.folder / "";
        const auto url = [](const fs::path &path) { return QUrl::fromLocalFile(QString::fromStdString(path)); };
        for (const char *remote : {"https://example.org/a.flac", "smb://host/music", "file://elsewhere/a.flac", ""}) {
            pages.library.importDropped({QUrl(QString::fromUtf8(remote))});
            QVERIFY2(!pages.model->busy(), remote);
        }
        pages.desk.folder.write("music/a.flac", flacWith({"TITLE=a"}));
        pages.desk.folder.write("goes/b.flac", flacWith({"TITLE=b"}));
        fs::create_symlink(folder / "music/a.flac", folder / "link.flac");
        fs::create_directory_symlink(folder / "music", folder / "links");
        fs::create_directory_symlink(folder, folder / "music/round");
        QList<QUrl> urls {
            url(folder / "goes"), url(folder / "link.flac"), url(folder / "links"), url(folder / "music")};
        for (int i = 0; i < 5'000; ++i) {
            urls << url(folder / ("missing-" + std::to_string(i))) << url(folder / "music/a.flac");
        }
        QElapsedTimer time;
        time.start();
        pages.library.importDropped(urls);
        QVERIFY(pages.model->busy());
        QVERIFY2(time.elapsed() < 500, "the window waits for it"); // of some milliseconds
        fs::remove_all(folder / "goes"); // while it is read, or just before or after
        pages.desk.waitForJobs(*pages.model);
        const std::vector<Track> &tracks = pages.model->tracks();
        QCOMPARE(
            std::count_if(tracks.begin(), tracks.end(), [](const Track &track) { return track.title == u"a"_s; }), 1);
        QVERIFY(tracks.size() <= 2);
        QVERIFY(fs::exists(folder / "music/a.flac") && fs::is_symlink(folder / "link.flac"));
    }

    void themesFollowTheDeviceAndTakeOnePackage()
    {
        Pages pages;
        ThemesPresenter themes {*pages.model};
        ThemeListModel &rows = *themes.themes();
        const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const auto dropTitles = [&] {
            const QUrl package = QUrl::fromLocalFile(u"/none/Motyw.ZIP"_s);
            QStringList titles;
            for (const QList<QUrl> &urls : {QList {package}, QList {package, package}, QList<QUrl> {},
                     QList {QUrl(u"https://example.org/a.zip"_s)}, QList {QUrl::fromLocalFile(u"/none/a.cfg"_s)}}) {
                titles += themes.dropTitle(urls);
                if (titles.back() != u"Upuść, aby zainstalować motyw"_s) {
                    themes.importDropped(urls.mid(0, urls.size() == 1 && urls[0] == package ? 0 : urls.size()));
                }
            }
            titles.removeDuplicates();
            return titles;
        };
        QCOMPARE(dropTitles(), {u"Najpierw podłącz urządzenie"_s});
        const Device device = pages.desk.makeDevice("IPOD", true);
        for (const char *name : {"Alfa", "Łąka", "Beta 2", "Beta 10"}) {
            pages.desk.folder.write(
                fs::path("IPOD/.rockbox/themes") / (name + std::string(".cfg")), std::string("wps: /") + name + "\n");
        }
        pages.desk.folder.write("IPOD/.rockbox/config.cfg", "wps: /Łąka\n");
        *pages.desk.found = {device};
        pages.model->select(device);
        const auto column = [&](ThemeListModel::Role role) {
            QStringList texts;
            for (int row = 0; row < rows.rowCount(); ++row) {
                texts += rows.data(rows.index(row), role).toString();
            }
            return texts;
        };
        QTRY_COMPARE(column(ThemeListModel::NameRole), QStringList({u"Alfa"_s, u"Beta 2"_s, u"Beta 10"_s, u"Łąka"_s}));
        QCOMPARE(column(ThemeListModel::ActiveRole), QStringList({u"false"_s, u"false"_s, u"false"_s, u"true"_s}));
        QCOMPARE(column(ThemeListModel::SourceRole)[0], u"Dodaj własny zrzut lub pobierz podgląd"_s);
        QCOMPARE(themes.rowFor(u"l"_s, Qt::NoModifier, 0), 3);
        QCOMPARE(themes.rowFor(u"q"_s, Qt::NoModifier, 0), -1);
        QCOMPARE(
            dropTitles(), QStringList({u"Upuść, aby zainstalować motyw"_s, u"Upuść jedną paczkę ZIP z motywem"_s}));
        QVERIFY(!pages.model->busy());
        fs::remove(pages.desk.folder / "IPOD/.rockbox/themes/Beta 2.cfg");
        pages.model->refresh();
        QTRY_COMPARE(rows.count(), 3);
        for (const int none : {-1, 3}) {
            themes.open(none);
            themes.choosePicture(none);
            QVERIFY(!pages.model->openTheme() && pages.desk.panels.requests.empty());
        }
        pages.desk.folder.write("Motyw.ZIP", "no archive");
        themes.importDropped({QUrl::fromLocalFile(QString::fromStdString(pages.desk.folder / "Motyw.ZIP"))});
        QVERIFY(pages.model->busy());
        QCOMPARE(dropTitles(), {u"Najpierw poczekaj na koniec bieżącej pracy"_s});
        pages.desk.waitForJobs(*pages.model);
        QCOMPARE(pages.model->status(), u"Instalacja motywu przerwana"_s);
        QCOMPARE(rows.count(), 3);
    }

    void aPanelIsAnsweredOnceWithFilesOfThisComputer()
    {
        AppLocalizer::setLanguage(u"pl"_s);
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), u"Anuluj"_s); // in a panel of Qt's own
        DesktopPanels panels;
        QSignalSpy asked(&panels, &DesktopPanels::asked);
        std::vector<std::vector<fs::path>> answers;
        const auto note = [&](auto paths) { answers.push_back(std::move(paths)); };
        const QUrl file(u"file:///music/a.flac"_s);
        panels.open({.files = true, .folders = true, .multiple = true, .prompt = {}, .message = {}}, note);
        QCOMPARE(asked.takeFirst().at(0).value<DesktopPanels::Kind>(), DesktopPanels::ChooseFilesOrFolder);
        panels.answer({file});
        panels.answer({file});
        QVERIFY(answers == std::vector(1, std::vector<fs::path> {"/music/a.flac"}));
        panels.open({}, note);
        panels.answer({QUrl(u"smb://server/a"_s)});
        QCOMPARE(answers.size(), 1U);
        panels.open({}, [&](const auto &) { panels.open({}, note); }); // an answer may ask the next question
        panels.answer({file});
        panels.answer({file});
        QCOMPARE(answers.size(), 2U);
    }

    void linksOfTheHandbook_data()
    {
        using Kind = HandbookText::Destination::Kind;
        QTest::addColumn<Kind>("kind");
        const std::pair<const char *, Kind> table[] = {{"https://example.org/a#b", Kind::Outside},
            {"mailto:a@example.org", Kind::Outside}, {"#sound", Kind::Place}, {"index.html#sound", Kind::Place},
            {"en.html", Kind::Document}, {"http://example.org", Kind::Nowhere}, {"//example.org/a", Kind::Nowhere},
            {"javascript:0", Kind::Nowhere}, {"file:///etc/passwd", Kind::Nowhere},
            {"../icons/marlune.svg", Kind::Nowhere}, {"missing.html", Kind::Nowhere}, {"", Kind::Nowhere}};
        for (const auto &[link, kind] : table) {
            QTest::newRow(link) << kind;
        }
    }
    void linksOfTheHandbook()
    {
        QFETCH(const HandbookText::Destination::Kind, kind);
        const QString link = QString::fromLatin1(QTest::currentDataTag());
        m_opened.clear();
        const QStringList schemes {u"http"_s, u"https"_s, u"mailto"_s, u"file"_s};
        std::for_each(schemes.begin(), schemes.end(),
            [this](const auto &each) { QDesktopServices::setUrlHandler(each, this, "take"); });
        HandbookDocument().follow(link);
        std::for_each(schemes.begin(), schemes.end(), QDesktopServices::unsetUrlHandler);
        QCOMPARE(m_opened.size(), kind == HandbookText::Destination::Kind::Outside ? 1 : 0);
        QCOMPARE(HandbookText::destination(QUrl(u"qrc:/guide/index.html"_s), link).kind, kind);
    }

    void bothHandbooksHaveTheSameSectionsAndOnlyLinksThatLead()
    {
        using Kind = HandbookText::Destination::Kind;
        QStringList before;
        for (const QString &name : {u"index.html"_s, u"en.html"_s}) {
            const QUrl address(u"qrc:/guide/"_s + name);
            const auto text = HandbookText::read(address, {});
            QStringList sections;
            QStringList wanted;
            for (const HandbookText::Part &part : HandbookText::parts(*text)) {
                const HandbookText::Destination to = HandbookText::destination(address, part.target);
                QVERIFY2(part.target.isEmpty() || to.kind == Kind::Outside || to.kind == Kind::Place,
                    qPrintable(part.target));
                (part.target.isEmpty() ? sections : wanted).append(part.target.isEmpty() ? part.anchor : to.anchor);
            }
            sections.removeAll(QString());
            wanted.removeAll(QString());
            QCOMPARE(sections.size(), 18);
            QVERIFY(std::all_of(
                wanted.begin(), wanted.end(), [&](const QString &anchor) { return sections.contains(anchor); }));
            QVERIFY(before.isEmpty() || before == sections);
            before = sections;
        }
    }

    void theHandbookReadsOnlyWhatLiesBesideIt()
    {
        const TemporaryFolder folder;
        folder.write("a.png", "picture");
        folder.write("beside/sheet.css", "p { font-weight: 700 }");
        const fs::path file = folder.write("beside/a.html",
            "<html><head><link rel=stylesheet type='text/css' href='sheet.css'><link rel=stylesheet "
            "href='http://127.0.0.1:1/a.css'></head><body>"
            "<script>document.write('script')</script><p>Text<img src='http://127.0.0.1:1/a.png'>"
            "<img src='http://127.0.0.1:1/a.png'><img src='../a.png'><img src='sheet.css'></p>");
        const auto text = HandbookText::read(QUrl::fromLocalFile(QString::fromStdString(file.string())), {});
        QCOMPARE(text->toPlainText(), u"Text"_s + QChar::ObjectReplacementCharacter);
        QCOMPARE(QTextCursor(text->firstBlock()).block().begin().fragment().charFormat().fontWeight(), 700);
        QVERIFY(HandbookText::read(QUrl(u"qrc:/guide/missing.html"_s), {})->isEmpty());
    }
};

QTEST_MAIN(PresenterTest)
#include "PresenterTest.moc"
