// Themes installed through the model.
#include "support/Archives.h"
#include "support/ModelDesk.h"

class ThemeWorkflowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void installsTheChosenPackageOrSaysWhyNotAndDropsAnAnswerThatComesTooLate()
    {
        ModelDesk desk;
        const auto model = desk.start();
        model->installTheme(); // on nothing
        QVERIFY(desk.panels.requests.empty());
        const auto answer = [&](const char *name) {
            desk.panels.answer({archive(name)});
            desk.waitForJobs(*model);
        };
        model->select(desk.makeDevice("IPOD", false));
        desk.waitForJobs(*model);
        model->installTheme();
        QVERIFY(desk.panels.requests.back().archives && !model->busy());
        model->backup();
        model->installTheme(); // while that runs
        QCOMPARE(desk.panels.requests.size(), 1U);
        answer("plain.zip");
        QCOMPARE(model->status(), QStringLiteral("Kopia ustawień zapisana na Macu"));
        model->installTheme();
        model->select(desk.makeDevice("OTHER", false));
        answer("plain.zip");
        for (const char *name : {"name-parent.zip", "plugin.zip", "missing.zip"}) {
            model->dismissAlert();
            model->installTheme();
            answer(name);
            QCOMPARE(model->status(), QStringLiteral("Instalacja motywu przerwana"));
            QVERIFY(!model->alert().value_or(QString()).isEmpty() && model->themes().empty());
        }
        QVERIFY(!std::filesystem::exists(desk.folder / "IPOD/.rockbox/themes"));
        model->installTheme();
        answer("plain.zip");
        QCOMPARE(model->status(), QStringLiteral("Zainstalowano motywy: 1"));
        QCOMPARE(model->alert().value_or(QString()),
            QStringLiteral("Motyw został wgrany, a poprzednie ustawienia mają kopię na Macu.\n\nAktywuj go na iPodzie: "
                           "Settings → Theme Settings → Browse Themes."));
        QCOMPARE(model->themes().size(), 1U);
        QCOMPARE(model->backups().size(), 2U);
    }
};

QTEST_GUILESS_MAIN(ThemeWorkflowTest)
#include "ThemeWorkflowTest.moc"
