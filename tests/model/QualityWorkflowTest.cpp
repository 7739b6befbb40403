// The check for duplicates through the model.
#include "support/ModelDesk.h"

namespace {

const QString unchecked = u"Duplikaty nie zostały jeszcze sprawdzone."_s;

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
        desk.run(*model, &MarluneModel::checkDuplicates); // one job at a time
        QCOMPARE(model->duplicateStatus(), unchecked);
        model->checkDuplicates();
        QVERIFY(model->busy() && !model->working());
        QCOMPARE(model->duplicateStatus(), u"Sprawdzam zawartość plików…"_s);
        desk.waitForJobs(*model);
        QCOMPARE(model->duplicateIssues().size(), 1U);
        QCOMPARE(model->progress(), 1.0);
        QCOMPARE(model->duplicateStatus(), u"Znaleziono grup identycznych plików: 1. Sprawdzone przez SHA-256."_s);
        QCOMPARE(model->status(), u"Sprawdzanie duplikatów zakończone"_s);

        fs::remove(desk.folder / "Computer/b.mp3");
        desk.run(*model, &MarluneModel::checkDuplicates);
        QVERIFY(model->alert().value_or(QString()).contains(u"b.mp3"_s));
        QVERIFY(model->duplicateIssues().empty() && !model->busy());
        QCOMPARE(model->duplicateStatus(), u"Sprawdzanie przerwane — wynik nie jest kompletny."_s);
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
            desk.run(*model, &MarluneModel::scanDeviceMusic);
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
            QVERIFY(!model->status().startsWith(u"Porównuję"_s));
        }
    }
};

QTEST_GUILESS_MAIN(QualityWorkflowTest)
#include "QualityWorkflowTest.moc"
