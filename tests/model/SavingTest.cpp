// Backups and playlists made through the model.
#include "support/ModelDesk.h"

class SavingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void makesOneBackupAtATimeAndTellsHowItWent()
    {
        ModelDesk desk;
        const auto model = desk.start();
        model->backup(); // of nothing
        model->select(desk.makeDevice("IPOD", false));
        model->backup();
        model->backup();
        desk.waitForJobs(*model);
        QCOMPARE(model->status(), QStringLiteral("Kopia ustawień zapisana na Macu"));
        std::filesystem::remove_all(desk.folder / "IPOD/.rockbox");
        model->backup();
        desk.waitForJobs(*model);
        QVERIFY(model->alert() && model->backups().size() == 1);
        QCOMPARE(model->status(), QStringLiteral("Nie udało się zapisać kopii"));
    }

    void savesAPlaylistOfWhatWasTransferredAndSelected()
    {
        ModelDesk desk;
        const auto model = desk.start();
        desk.folder.write("IPOD/Music/a b/2.mp3", "x");
        *desk.found = {desk.makeDevice("IPOD", true)};
        model->select(desk.found->front());
        model->importURLs({desk.folder.write("Computer/a/b/1.mp3", "new")}, false, true);
        desk.waitForJobs(*model);
        model->transferQueue();
        desk.waitForJobs(*model);
        model->scanDeviceMusic();
        desk.waitForJobs(*model);
        model->toggle(*model->albums()->front());
        model->toggle(*model->albums()->back());
        model->dismissAlert();
        {
            const HeldJobs held;
            model->makePlaylist();
            model->makePlaylist();
            model->eject();
            QVERIFY(!model->busy());
        }
        desk.waitForJobs(*model);
        QVERIFY(!model->alert());
        QCOMPARE(fileBytes(desk.folder / "IPOD/Playlists/Moja playlista.m3u8"), // the blank sorts before the separator
            std::string("#EXTM3U\n/Music/a b/2.mp3\n/Music/a/b/1.mp3\n"));
        model->makePlaylist(); // the name is taken
        desk.waitForJobs(*model);
        QVERIFY(model->alert());
    }
};

QTEST_GUILESS_MAIN(SavingTest)
#include "SavingTest.moc"
