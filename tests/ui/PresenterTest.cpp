// What the pages are told by their presenters, over a real model.
#include "platform/MarluneError.h"
#include "support/ModelDesk.h"
#include "ui/DesktopPanels.h"
#include "ui/LibraryPresenter.h"
#include "ui/ShellPresenter.h"

#include <QSignalSpy>

#include <latch>

namespace {

struct Pages {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    ShellPresenter shell {*model};
    LibraryPresenter library {*model, std::make_shared<CoverStore>()};

    std::filesystem::path write(const char *name, const std::string &comment = "ALBUM=Album") const
    {
        return desk.folder.write(std::string("music/") + name, flacWith({"ARTIST=Artist", comment}, name));
    }
};

Panels::Request request(bool files, bool folders)
{
    Panels::Request made;
    made.files = files;
    made.folders = folders;
    return made;
}

QString plain(QString text)
{
    return text.replace(QChar(u'\u00A0'), QLatin1Char(' '));
}

} // namespace

class PresenterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLibraryPageKnowsEmptyFromFilteredOut()
    {
        Pages pages;
        QVERIFY(pages.library.withoutMusic() && pages.library.nothingListed());
        pages.write("a.flac");
        pages.write("b.flac", "ALBUM=Other");
        pages.model->importURLs({pages.desk.folder / "music"}, false, false);
        QTRY_COMPARE(pages.library.counts(), QStringLiteral("Albumy: 2 · Utwory: 2"));
        QVERIFY(!pages.library.withoutMusic() && !pages.library.nothingListed());
        QVERIFY(!pages.library.highResolutionListed());
        pages.model->setFormatFilter(QStringLiteral("MP3"));
        QTRY_VERIFY(pages.library.nothingListed());
        QVERIFY(!pages.library.withoutMusic());
        QCOMPARE(pages.library.counts(), QStringLiteral("Albumy: 0 · Utwory: 0"));
    }

    void searchWaitsForAPauseInTyping()
    {
        Pages pages;
        const QSignalSpy searches(pages.model.get(), &MarluneModel::searchChanged);
        for (const char16_t *text : {u"a", u"al", u"alb"}) {
            pages.library.searchSoon(QString::fromUtf16(text));
        }
        QCOMPARE(searches.count(), 0);
        QTRY_COMPARE(pages.model->search(), QStringLiteral("alb"));
        QCOMPARE(searches.count(), 1);
        pages.library.searchSoon(QStringLiteral("albu"));
        pages.library.searchSoon(QString());
        QCOMPARE(pages.model->search(), QString());
        QTest::qWait(300);
        QCOMPARE(pages.model->search(), QString());
    }

    void dropsTakeFilesOfAnyNameAndNothingElse()
    {
        Pages pages;
        const std::filesystem::path file = pages.write("\xA3"
                                                       "aka #1.flac");
        pages.library.importDropped({QUrl(QStringLiteral("https://example.org/a.flac"))});
        QVERIFY(!pages.model->busy());
        const std::string name = (pages.desk.folder / "music").string() + "/%A3aka%20%231.flac";
        pages.library.importDropped({QUrl(QStringLiteral("https://example.org/a.flac")),
            QUrl::fromEncoded(QByteArray::fromStdString("file://" + name))});
        ModelDesk::waitForJobs(*pages.model);
        QCOMPARE(pages.model->tracks().size(), 1U);
        QVERIFY(pages.model->tracks().front().url == file);
        QCOMPARE(pages.model->queued().size(), 1);
    }

    void theFrameTellsOfQueueAndDevice()
    {
        Pages pages;
        QCOMPARE(plain(pages.shell.queueLine()), QStringLiteral("0 utworów · 0 B"));
        QCOMPARE(pages.shell.headline(), QStringLiteral("Gotowe do wgrania"));
        QVERIFY(!pages.shell.connected() && !pages.shell.canTransfer() && !pages.shell.canEject());
        pages.write("a.flac");
        pages.model->importURLs({pages.desk.folder / "music"}, false, true);
        QTRY_COMPARE(plain(pages.shell.queueLine()).section(QLatin1Char(' '), 0, 2), QStringLiteral("1 utworów ·"));
        QVERIFY(pages.shell.canClearQueue() && !pages.shell.canTransfer());

        Device device = pages.desk.makeDevice("IPOD", true);
        device.total = 160'000'000'000;
        device.available = 40'000'000'000;
        pages.desk.folder.write("IPOD/.rockbox/themes/a.cfg", "");
        pages.desk.folder.write("IPOD/.rockbox/themes/b.cfg", "");
        pages.model->select(device);
        QTRY_COMPARE(pages.shell.themeCount(), QStringLiteral("2 zainstalowanych motywów"));
        QTRY_VERIFY(pages.shell.canTransfer());
        QVERIFY(pages.shell.canEject() && !pages.shell.testFolder());
        QCOMPARE(pages.shell.deviceName(), QStringLiteral("IPOD"));
        QCOMPARE(plain(pages.shell.deviceSpace()), QStringLiteral("160,00 GB · 40,00 GB wolne"));
        QCOMPARE(pages.shell.usedShare(), 0.75);

        device.isVolume = false;
        device.total = 0;
        pages.model->select(device);
        QTRY_VERIFY(pages.shell.testFolder());
        QVERIFY(!pages.shell.canEject());
        QCOMPARE(pages.shell.usedShare(), 0.0);
    }

    void severalFoundDevicesAreOffered()
    {
        Pages pages;
        *pages.desk.found = {pages.desk.makeDevice("FIRST", true), pages.desk.makeDevice("SECOND", true)};
        pages.model->refresh();
        QTRY_COMPARE(pages.shell.offeredDevices().size(), 2);
        pages.shell.selectOffered(2);
        pages.shell.selectOffered(-1);
        QVERIFY(!pages.model->device());
        pages.shell.selectOffered(1);
        QTRY_VERIFY(pages.shell.offeredDevices().isEmpty());
        QCOMPARE(pages.shell.deviceName(), QStringLiteral("SECOND"));
    }

    void theWindowWaitsForWorkAndForItsLastWord()
    {
        Pages pages;
        QVERIFY(pages.shell.requestClose());
        std::latch letGo(1);
        pages.desk.ejector = [&](const std::filesystem::path &) {
            letGo.wait();
            throw MarluneError(QStringLiteral("Dysk jest zajęty."));
        };
        *pages.desk.found = {pages.desk.makeDevice("IPOD", true)};
        pages.model->refresh();
        QTRY_VERIFY(pages.shell.canEject());
        pages.model->eject();
        const QSignalSpy closes(&pages.shell, &ShellPresenter::mayCloseNow);
        QVERIFY(!pages.shell.requestClose());
        pages.shell.stayOpen();
        QVERIFY(!pages.shell.closing());
        QVERIFY(!pages.shell.requestClose());
        QVERIFY(pages.shell.closing());
        letGo.count_down();
        QTRY_VERIFY(pages.model->alert());
        QTest::qWait(20);
        QCOMPARE(closes.count(), 0);
        pages.model->dismissAlert();
        QTRY_COMPARE(closes.count(), 1);
        QVERIFY(!pages.shell.closing());
    }

    void aPanelIsAnsweredOnceAndCancelledOnesNever()
    {
        DesktopPanels panels;
        QSignalSpy asked(&panels, &DesktopPanels::asked);
        std::vector<std::vector<std::filesystem::path>> answers;
        const auto note = [&](std::vector<std::filesystem::path> paths) { answers.push_back(std::move(paths)); };
        const QUrl file(QStringLiteral("file:///music/a.flac"));

        panels.open(request(true, true), note);
        QCOMPARE(asked.takeFirst().at(0).value<DesktopPanels::Kind>(), DesktopPanels::ChooseFilesOrFolder);
        panels.answer({file});
        panels.answer({file});
        QCOMPARE(answers.size(), 1U);
        QVERIFY(answers.at(0) == std::vector<std::filesystem::path> {"/music/a.flac"});

        panels.open(request(false, true), note);
        QCOMPARE(asked.takeFirst().at(0).value<DesktopPanels::Kind>(), DesktopPanels::ChooseFolder);
        panels.cancel();
        panels.answer({file});
        panels.open(request(true, false), note);
        QCOMPARE(asked.takeFirst().at(0).value<DesktopPanels::Kind>(), DesktopPanels::ChooseFiles);
        panels.answer({QUrl(QStringLiteral("smb://server/a"))});
        QCOMPARE(answers.size(), 1U);

        Panels::Request picture = request(true, false);
        picture.pictures = true;
        panels.open(picture, note);
        QCOMPARE(asked.takeFirst().at(0).value<DesktopPanels::Kind>(), DesktopPanels::ChoosePictures);

        // An answer may ask the next question.
        panels.open(request(true, false), [&](const auto &) { panels.open(request(false, true), note); });
        panels.answer({file});
        panels.answer({file});
        QCOMPARE(answers.size(), 2U);
    }
};

QTEST_MAIN(PresenterTest)
#include "PresenterTest.moc"
