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
    void installsAPackageOrTellsThatItWasRefused()
    {
        const ThemeDesk desk;
        desk.model->installTheme(); // on nothing
        QVERIFY(desk.panels.requests.empty());
        desk.select("IPOD");
        desk.model->installTheme();
        QVERIFY(desk.panels.requests.back().archives && !desk.panels.requests.back().multiple);
        desk.answer("name-parent.zip");
        QVERIFY(desk.model->alert() && !desk.wasInstalled());
        QCOMPARE(desk.model->status(), QStringLiteral("Instalacja motywu przerwana"));
        desk.model->installTheme();
        desk.answer("plain.zip");
        QCOMPARE(desk.model->status(), QStringLiteral("Zainstalowano motywy: 1"));
        QVERIFY(desk.model->alert().value_or(QString()).startsWith(QStringLiteral("Motyw został wgrany")));
        QVERIFY(desk.wasInstalled() && desk.model->themes().size() == 1 && desk.model->backups().size() == 1);
    }

    void dropsAnAnswerThatComesTooLate()
    {
        const ThemeDesk desk;
        desk.select("IPOD");
        desk.waitForJobs(*desk.model);
        desk.model->installTheme();
        desk.model->backup();
        desk.model->installTheme(); // while busy
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
