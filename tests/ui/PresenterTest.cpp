// What the pages are told by their presenters, over a real model.
#include "platform/MarluneError.h"
#include "support/ModelDesk.h"
#include "ui/DesktopPanels.h"
#include "ui/LibraryPresenter.h"
#include "ui/ShellPresenter.h"

#include <QSignalSpy>

namespace {

struct Pages {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    ShellPresenter shell {*model};
    LibraryPresenter library {*model, std::make_shared<CoverStore>()};
};

QString plain(QString text)
{
    return text.replace(QChar(u'\u00A0'), QLatin1Char(' '));
}

} // namespace

class PresenterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void searchWaitsForAPauseInTyping()
    {
        Pages pages;
        const QSignalSpy searches(pages.model.get(), &MarluneModel::searchChanged);
        for (const char16_t *text : {u"a", u"al", u"alb"}) {
            pages.library.searchSoon(QString::fromUtf16(text));
        }
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
        const auto file = pages.desk.folder.write("music/\xA3"
                                                  "aka #1.flac",
            flacWith({}));
        const QUrl elsewhere(QStringLiteral("https://example.org/a.flac"));
        pages.library.importDropped({elsewhere});
        QVERIFY(!pages.model->busy());
        const std::string name = "file://" + (pages.desk.folder / "music").string() + "/%A3aka%20%231.flac";
        pages.library.importDropped({elsewhere, QUrl::fromEncoded(QByteArray::fromStdString(name))});
        ModelDesk::waitForJobs(*pages.model);
        QCOMPARE(pages.model->tracks().size(), 1U);
        QVERIFY(pages.model->tracks().front().url == file);
        QCOMPARE(pages.model->queued().size(), 1);
    }

    void theFrameTellsOfQueueAndDevice()
    {
        Pages pages;
        QCOMPARE(plain(pages.shell.queueLine()), QStringLiteral("0 utworów · 0 B"));
        pages.desk.folder.write("music/a.flac", flacWith({}));
        pages.model->importURLs({pages.desk.folder / "music"}, false, true);
        QTRY_VERIFY(plain(pages.shell.queueLine()).startsWith(QStringLiteral("1 utworów · ")));
        QVERIFY(pages.shell.canClearQueue() && !pages.shell.canTransfer());

        *pages.desk.found = {pages.desk.makeDevice("FIRST", true), pages.desk.makeDevice("SECOND", true)};
        Device &second = pages.desk.found->back();
        second.total = 160'000'000'000;
        second.available = 40'000'000'000;
        pages.desk.folder.write("SECOND/.rockbox/themes/a.cfg", "");
        pages.model->refresh();
        QTRY_COMPARE(pages.shell.offeredDevices().size(), 2);
        pages.shell.selectOffered(2);
        pages.shell.selectOffered(-1);
        QVERIFY(!pages.model->device());
        pages.shell.selectOffered(1);
        QTRY_VERIFY(pages.shell.offeredDevices().isEmpty() && pages.shell.canTransfer());
        QCOMPARE(plain(pages.shell.deviceSpace()), QStringLiteral("160,00 GB · 40,00 GB wolne"));
        QCOMPARE(pages.shell.usedShare(), 0.75);
        QTRY_COMPARE(pages.shell.themeCount(), QStringLiteral("1 zainstalowanych motywów"));
    }

    void theWindowWaitsForWorkAndForItsLastWord()
    {
        Pages pages;
        QVERIFY(pages.shell.requestClose());
        pages.desk.ejector = [](const std::filesystem::path &) { throw MarluneError(QStringLiteral("Zajęty.")); };
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

    void aPanelIsAnsweredOnceAndCancelledOnesNever()
    {
        DesktopPanels panels;
        QSignalSpy asked(&panels, &DesktopPanels::asked);
        std::vector<std::vector<std::filesystem::path>> answers;
        const auto ask = [&](bool files, bool folders, bool pictures = false, bool archives = false) {
            panels.open({.files = files,
                            .folders = folders,
                            .pictures = pictures,
                            .archives = archives,
                            .prompt = {},
                            .message = {}},
                [&](auto paths) { answers.push_back(std::move(paths)); });
            return asked.takeFirst().at(0).value<DesktopPanels::Kind>();
        };
        const QUrl file(QStringLiteral("file:///music/a.flac"));
        QCOMPARE(ask(true, true), DesktopPanels::ChooseFilesOrFolder);
        panels.answer({file});
        panels.answer({file});
        QCOMPARE(answers.size(), 1U);
        QVERIFY(answers.at(0) == std::vector<std::filesystem::path> {"/music/a.flac"});

        QCOMPARE(ask(false, true), DesktopPanels::ChooseFolder);
        panels.cancel();
        panels.answer({file});
        QCOMPARE(ask(true, false), DesktopPanels::ChooseFiles);
        panels.answer({QUrl(QStringLiteral("smb://server/a"))});
        QCOMPARE(answers.size(), 1U);

        QCOMPARE(ask(true, false, true), DesktopPanels::ChoosePictures);
        QCOMPARE(ask(true, false, false, true), DesktopPanels::ChooseArchives);

        // An answer may ask the next question.
        panels.open(
            {}, [&](const auto &) { panels.open({}, [&](auto paths) { answers.push_back(std::move(paths)); }); });
        panels.answer({file});
        panels.answer({file});
        QCOMPARE(answers.size(), 2U);
    }
};

QTEST_MAIN(PresenterTest)
#include "PresenterTest.moc"
