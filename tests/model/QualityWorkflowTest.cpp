// The check for duplicates through the model.
#include "support/ModelDesk.h"

namespace {

const QString unchecked = QStringLiteral("Duplikaty nie zostały jeszcze sprawdzone.");

} // namespace

class QualityWorkflowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsDuplicatesAndTellsHowItWent()
    {
        ModelDesk desk;
        const auto model = desk.start();
        model->checkDuplicates(); // of nothing
        QCOMPARE(model->duplicateStatus(), unchecked);
        for (const char *name : {"Computer/a.mp3", "Computer/b.mp3", "Computer/c.mp3"}) {
            desk.folder.write(name, "same");
        }
        model->importURLs({desk.folder / "Computer"}, false, false);
        model->checkDuplicates(); // one job at a time
        desk.waitForJobs(*model);
        QCOMPARE(model->duplicateStatus(), unchecked);
        model->checkDuplicates();
        QVERIFY(model->busy() && !model->working());
        QCOMPARE(model->duplicateStatus(), QStringLiteral("Sprawdzam zawartość plików…"));
        desk.waitForJobs(*model);
        QCOMPARE(model->duplicateIssues().size(), 1U);
        QCOMPARE(model->progress(), 1.0);
        QCOMPARE(model->duplicateStatus(),
            QStringLiteral("Znaleziono grup identycznych plików: 1. Sprawdzone przez SHA-256."));
        QCOMPARE(model->status(), QStringLiteral("Sprawdzanie duplikatów zakończone"));

        std::filesystem::remove(desk.folder / "Computer/b.mp3");
        model->checkDuplicates();
        desk.waitForJobs(*model);
        QVERIFY(model->alert().value_or(QString()).contains(QStringLiteral("b.mp3")));
        QVERIFY(model->duplicateIssues().empty() && !model->busy());
        QCOMPARE(model->duplicateStatus(), QStringLiteral("Sprawdzanie przerwane — wynik nie jest kompletny."));
    }

    void dropsWhatItFindsAboutTracksThatAreNotShownAnyMore()
    {
        ModelDesk desk;
        const auto model = desk.start();
        for (const char *name : {"IPOD/Music/a.mp3", "IPOD/Music/b.mp3"}) {
            desk.folder.write(name, "same");
        }
        const Device device = desk.makeDevice("IPOD", true);
        const std::function<void()> turns[]
            = {[&] { model->setLibraryOnDevice(false); }, [&] { model->volumeUnmounted(device.root); }};
        for (const std::function<void()> &turn : turns) {
            *desk.found = {device};
            model->select(device);
            model->scanDeviceMusic();
            desk.waitForJobs(*model);
            {
                const HeldJobs held({JobPriority::UserInitiated});
                model->checkDuplicates();
                QVERIFY(model->busy());
                desk.found->clear();
                turn();
            }
            desk.waitForJobs(*model);
            QVERIFY(!model->busy() && model->duplicateIssues().empty() && !model->alert());
            QCOMPARE(model->duplicateStatus(), unchecked);
            QVERIFY(!model->status().startsWith(QStringLiteral("Porównuję")));
        }
    }
};

QTEST_GUILESS_MAIN(QualityWorkflowTest)
#include "QualityWorkflowTest.moc"
