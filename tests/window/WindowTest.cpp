// A new user's road through the real window, by mouse and keyboard only: choose the device, add music, search, queue,
// transfer, transfer again, listen.
#include "NewUser.h"

#include "platform/MarluneError.h"

class WindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(fs::exists(sample / "Music"));
        MarluneApp::prepareApplication();
    }

    void refusesToShareItsSettingsWithASecondProgram()
    {
        NewUser user;
        QVERIFY_EXCEPTION_THROWN(MarluneApp::Program(user.setup()), MarluneError);
    }

    void takesMusicFromAFolderToADevice()
    {
        NewUser user;
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music");
        QVERIFY(model.tracks().size() > 40);
        QCOMPARE(std::size_t(model.queued().size()), model.tracks().size());
        QTRY_VERIFY(user.count() >= 3);

        user.clickNamed("clearQueueButton");
        QVERIFY(model.queued().isEmpty());
        user.searchFor("nothing has this name");
        QTRY_VERIFY(user.item("emptyState"));
        user.searchFor("soundings");
        QTRY_VERIFY(user.count() == 1 && user.tile("Soundings"));

        const std::size_t before = filesBelow(user.device / "Music").size();
        for (const int copied : {8, 0}) {
            user.click(user.item("queueButton", user.tile("Soundings")));
            user.clickNamed("transferButton");
            QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
            QVERIFY(model.alert()->startsWith(u"Wgrano: %1. Pominięto identyczne: %2."_s.arg(copied).arg(8 - copied)));
            QCOMPARE(filesBelow(user.device / "Music/Low Tide Almanac/Soundings").size(), 8U + 2U); // a cover a disc
            QCOMPARE(filesBelow(user.device / "Music").size(), before + 8U + 2U);
            QTRY_VERIFY(user.item("alertOk"));
            QTest::keyClick(user.program.window(), Qt::Key_Escape);
            QTRY_VERIFY(!user.item("alertOk") && !model.alert());
        }
        listenToTheOnlyAlbum(user);
    }

private:
    static void listenToTheOnlyAlbum(NewUser &user)
    {
        const Playback &playback = user.program.model().playback();
        QQuickItem *const tile = user.tile("Soundings");
        QTest::mouseMove(user.program.window(), tile->mapToScene({20, 20}).toPoint());
        QTRY_VERIFY(user.item("playButton", tile));
        user.click(user.item("playButton", tile));
        QTRY_VERIFY(playback.playing());
        user.clickNamed("stopButton");
        QTRY_VERIFY(!playback.current() && !user.item("stopButton"));
    }
};

QTEST_MAIN(WindowTest)

#include "WindowTest.moc"
