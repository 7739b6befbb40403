// Backups, playlists and themes made through the model.
#include "support/Archives.h"
#include "support/ModelDesk.h"

class SavingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void makesOneBackupAtATimeAndTellsHowItWent()
    {
        ModelDesk desk;
        for (const char *name : {"2026-01-02/x", "2026-01-10/x", ".hidden/x"}) {
            desk.folder.write(fs::path("data/Marlune/Backups") / name, "x");
        }
        const auto model = desk.start();
        QCOMPARE(model->backups().size(), 2U);
        QCOMPARE(model->backups()[0].filename().string(), std::string("2026-01-10")); // the newest first
        model->backup(); // of nothing
        model->select(desk.makeDevice("IPOD", false));
        model->backup();
        desk.run(*model, &MarluneModel::backup);
        QCOMPARE(model->status(), u"Kopia ustawień zapisana na Macu"_s);
        fs::remove_all(desk.folder / "IPOD/.rockbox");
        desk.run(*model, &MarluneModel::backup);
        QVERIFY(model->alert() && model->backups().size() == 3);
        QCOMPARE(model->status(), u"Nie udało się zapisać kopii"_s);
    }

    void savesAPlaylistOfWhatWasTransferredAndSelected()
    {
        ModelDesk desk;
        const auto model = desk.start();
        desk.folder.write("IPOD/Music/a b/2.mp3", "x");
        *desk.found = {desk.makeDevice("IPOD", true)};
        model->select(desk.found->front());
        desk.import(*model, desk.folder.write("Computer/a/b/1.mp3", "new"), true);
        desk.run(*model, &MarluneModel::transferQueue);
        desk.run(*model, &MarluneModel::scanDeviceMusic);
        model->toggle(*model->albums()->front());
        model->toggle(*model->albums()->back());
        model->dismissAlert();
        desk.hold(*model, [&] {
            model->makePlaylist();
            model->makePlaylist();
            model->eject();
            QVERIFY(!model->busy());
        });
        QVERIFY(!model->alert());
        QCOMPARE(fileBytes(desk.folder / "IPOD/Playlists/Moja playlista.m3u8"), // the blank sorts before the separator
            std::string("#EXTM3U\n/Music/a b/2.mp3\n/Music/a/b/1.mp3\n"));
        desk.run(*model, &MarluneModel::makePlaylist); // the name is taken
        QVERIFY(model->alert());
    }

    void installsTheChosenPackageOrSaysWhyNotAndDropsAnAnswerThatComesTooLate()
    {
        ModelDesk desk;
        const auto model = desk.start();
        model->installTheme(); // on nothing
        QVERIFY(desk.panels.requests.empty());
        const auto answer = [&](const char *name) { desk.answer(*model, archive(name)); };
        model->select(desk.makeDevice("IPOD", false));
        desk.waitForJobs(*model);
        model->installTheme();
        QVERIFY(desk.panels.requests.back().archives && !model->busy());
        model->backup();
        model->installTheme(); // while that runs
        QCOMPARE(desk.panels.requests.size(), 1U);
        answer("plain.zip");
        QCOMPARE(model->status(), u"Kopia ustawień zapisana na Macu"_s);
        model->installTheme();
        model->select(desk.makeDevice("OTHER", false));
        answer("plain.zip");
        for (const char *name : {"name-parent.zip", "plugin.zip", "missing.zip"}) {
            model->dismissAlert();
            model->installTheme();
            answer(name);
            QCOMPARE(model->status(), u"Instalacja motywu przerwana"_s);
            QVERIFY(!model->alert().value_or(QString()).isEmpty() && model->themes().empty());
        }
        QVERIFY(!fs::exists(desk.folder / "IPOD/.rockbox/themes"));
        model->installTheme();
        answer("plain.zip");
        QCOMPARE(model->status(), u"Zainstalowano motywy: 1"_s);
        QCOMPARE(model->alert().value_or(QString()),
            u"Motyw został wgrany, a poprzednie ustawienia mają kopię na Macu.\n\nAktywuj go na iPodzie: "
            "Settings → Theme Settings → Browse Themes."_s);
        QCOMPARE(model->themes().size(), 1U);
        QCOMPARE(model->backups().size(), 2U);
    }
};

QTEST_GUILESS_MAIN(SavingTest)
#include "SavingTest.moc"
