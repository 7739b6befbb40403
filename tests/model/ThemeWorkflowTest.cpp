// Themes installed through the model.
#include "support/Archives.h"
#include "support/ModelDesk.h"

namespace {

struct ThemeDesk : ModelDesk {
    std::unique_ptr<MarluneModel> model = start();

    void select(const char *name) const { model->select(makeDevice(name, false)); }
    void answer(const char *archive) const
    {
        panels.answer({std::filesystem::path(MARLUNE_ARCHIVES) / archive});
        waitForJobs(*model);
    }
    [[nodiscard]] bool wasInstalled(const char *device = "IPOD") const
    {
        return std::filesystem::exists(folder / device / ".rockbox/themes/Dawn.cfg");
    }
};

} // namespace

class ThemeWorkflowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void installsAPackageAndShowsItsThemesAndTheBackup()
    {
        const ThemeDesk desk;
        desk.model->installTheme(); // on nothing
        QVERIFY(desk.panels.requests.empty());
        desk.select("IPOD");
        desk.model->installTheme();
        QVERIFY(desk.panels.requests.back().archives && !desk.panels.requests.back().multiple);
        QCOMPARE(desk.panels.requests.back().prompt, QStringLiteral("Zainstaluj motyw"));
        QVERIFY(!desk.model->busy());
        desk.answer("plain.zip");
        QCOMPARE(desk.model->status(), QStringLiteral("Zainstalowano motywy: 1"));
        QCOMPARE(desk.model->alert().value_or(QString()),
            QStringLiteral("Motyw został wgrany, a poprzednie ustawienia mają kopię na Macu.\n\nAktywuj go na iPodzie: "
                           "Settings → Theme Settings → Browse Themes."));
        QCOMPARE(desk.model->themes().size(), 1U);
        QCOMPARE(desk.model->backups().size(), 1U);
        QVERIFY(desk.wasInstalled());
    }

    void tellsWhyAPackageIsRefused()
    {
        const ThemeDesk desk;
        desk.select("IPOD");
        for (const char *archive : {"name-parent.zip", "plugin.zip", "missing.zip"}) {
            desk.model->installTheme();
            desk.answer(archive);
            QVERIFY(!desk.model->alert().value_or(QString()).isEmpty());
            QCOMPARE(desk.model->status(), QStringLiteral("Instalacja motywu przerwana"));
            desk.model->dismissAlert();
        }
        QVERIFY(!desk.wasInstalled());
        // A file where the folder for backups has to be.
        std::filesystem::remove_all(desk.folder / "data/Marlune");
        desk.folder.write("data/Marlune/Backups", "x");
        desk.model->installTheme();
        desk.answer("plain.zip");
        QVERIFY(desk.model->alert() && !desk.wasInstalled());
    }

    void dropsAnAnswerThatComesTooLate()
    {
        const ThemeDesk desk;
        desk.select("IPOD");
        desk.waitForJobs(*desk.model);
        desk.model->installTheme();
        desk.model->backup();
        QVERIFY(desk.model->busy());
        desk.model->installTheme();
        QCOMPARE(desk.panels.requests.size(), 1U);
        desk.answer("plain.zip");
        QCOMPARE(desk.model->status(), QStringLiteral("Kopia ustawień zapisana na Macu"));
        desk.model->installTheme();
        desk.select("OTHER");
        desk.answer("plain.zip");
        QVERIFY(!desk.wasInstalled() && !desk.wasInstalled("OTHER"));
    }
};

QTEST_GUILESS_MAIN(ThemeWorkflowTest)
#include "ThemeWorkflowTest.moc"
