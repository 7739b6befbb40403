// Devices found, chosen, lost and ejected.
#include "support/ModelDesk.h"

#include "platform/MarluneError.h"

#include <QSignalSpy>

#include <future>

class DeviceWorkflowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void selectsASoleDeviceAndNeverOneOfTwo()
    {
        ModelDesk desk;
        const Device one = desk.makeDevice("ONE", true);
        *desk.found = {one};
        {
            const auto model = desk.start();
            QVERIFY(model->device() == one);
        }
        *desk.found = {one, desk.makeDevice("TWO", true)};
        const auto model = desk.start();
        QVERIFY(!model->device());
        QCOMPARE(model->devices().size(), 2U);
        *desk.found = {one};
        model->refresh();
        desk.waitForJobs(*model);
        QVERIFY(model->device() == one);
    }

    void dropsARefreshDuringARefreshButMissesNoDisk()
    {
        ModelDesk desk;
        const auto model = desk.start();
        QCOMPARE(desk.discoveries->load(), 1);
        model->refresh();
        model->refresh();
        desk.waitForJobs(*model);
        QCOMPARE(desk.discoveries->load(), 2);
        model->refresh();
        model->volumeMounted(); // the discovery under way may have looked before
        model->volumeMounted();
        desk.waitForJobs(*model);
        QCOMPARE(desk.discoveries->load(), 4);
    }

    void bringsBackNoDiskThatLeftDuringADiscovery()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        std::promise<void> answer;
        const std::shared_future<void> slow = answer.get_future().share();
        ModelEnvironment environment = desk.environment();
        environment.deviceDiscovery = [slow, device, count = desk.discoveries] {
            if (++*count == 1) {
                slow.wait();
                return std::vector {device}; // it was there when this looked
            }
            return std::vector<Device> {};
        };
        MarluneModel model(std::move(environment));
        bool seen = false;
        connect(&model, &MarluneModel::deviceChanged, this, [&] { seen = true; });
        model.volumeUnmounted(device.root);
        answer.set_value();
        QTRY_COMPARE(desk.discoveries->load(), 2);
        desk.waitForJobs(model);
        QVERIFY(!seen && model.devices().empty());
    }

    void takesNewValuesOfTheSelectedVolume()
    {
        ModelDesk desk;
        Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        const auto model = desk.start();
        device.available = 42;
        device.version = QStringLiteral("4.0");
        desk.found->front() = device;
        model->refresh();
        desk.waitForJobs(*model);
        QVERIFY(model->device() == device);
    }

    void disconnectsALostVolumeAndKeepsALostFolder()
    {
        ModelDesk desk;
        *desk.found = {desk.makeDevice("IPOD", true)};
        const auto model = desk.start();
        desk.folder.write("IPOD/Music/a.mp3", "x");
        model->scanDeviceMusic();
        desk.waitForJobs(*model);
        QCOMPARE(model->deviceTracks().size(), 1U);
        model->toggleTrack(model->deviceTracks().front());
        desk.found->clear();
        model->refresh();
        desk.waitForJobs(*model);
        QVERIFY(!model->device());
        QVERIFY(model->deviceTracks().empty() && model->selectedOnDevice().isEmpty());
        QVERIFY(model->libraryOnDevice());
        QCOMPARE(model->status(), QStringLiteral("iPod został odłączony"));

        model->select(desk.makeDevice("folder", false));
        model->refresh();
        desk.waitForJobs(*model);
        QVERIFY(model->device() && model->device()->name == QStringLiteral("folder"));
    }

    void disconnectsAtOnceWhenTheSelectedVolumeIsUnmounted()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        const auto model = desk.start();
        model->volumeUnmounted(desk.folder / "OTHER");
        QVERIFY(model->device() == device);
        desk.waitForJobs(*model);
        QVERIFY(model->device() == device);
        model->volumeUnmounted(device.root);
        QVERIFY(!model->device());
    }

    void asksForAFolderAndSelectsItIfItIsADevice()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("folder", false);
        const auto model = desk.start();
        model->chooseDevice();
        QCOMPARE(desk.panels.requests.size(), 1U);
        QVERIFY(desk.panels.requests[0].folders && !desk.panels.requests[0].files && !desk.panels.requests[0].multiple);
        QCOMPARE(desk.panels.requests[0].prompt, QStringLiteral("Wybierz"));
        desk.panels.answer({desk.folder / "config"});
        desk.waitForJobs(*model);
        QCOMPARE(model->alert().value_or(QString()), QStringLiteral("Ten folder nie zawiera katalogu .rockbox."));
        QVERIFY(!model->device());
        model->dismissAlert();
        model->chooseDevice();
        desk.panels.answer({device.root});
        desk.waitForJobs(*model);
        QVERIFY(model->device() && model->device()->root == device.root);
        QCOMPARE(model->status(), QStringLiteral("Wybrano: folder"));
        QVERIFY(!model->alert());
    }

    void forgetsWhatBelongsToTheOldDevice()
    {
        ModelDesk desk;
        const auto model = desk.start();
        const Device one = desk.makeDevice("one", false);
        desk.folder.write("one/Music/a.mp3", "x");
        model->select(one);
        model->scanDeviceMusic();
        desk.waitForJobs(*model);
        model->select(one);
        QCOMPARE(model->deviceTracks().size(), 1U);
        model->select(desk.makeDevice("two", false));
        QVERIFY(model->deviceTracks().empty());
    }

    void saysWhenADiskHangs()
    {
        ModelDesk desk;
        std::promise<void> answer;
        const std::shared_future<void> hanging = answer.get_future().share();
        ModelEnvironment environment = desk.environment();
        environment.deviceDiscovery = [hanging, device = desk.makeDevice("IPOD", true)] {
            hanging.wait();
            return std::vector {device};
        };
        environment.discoveryPatience = std::chrono::milliseconds(30);
        MarluneModel model(std::move(environment));
        QTRY_COMPARE(model.status(),
            QStringLiteral("Urządzenie nie odpowiada. Możesz nadal korzystać z biblioteki i poradnika."));
        desk.folder.write("Computer/a.mp3", "x");
        model.importURLs({desk.folder / "Computer"}, false, true); // the library stays usable
        QTRY_COMPARE(model.tracks().size(), 1U);
        answer.set_value();
        QTRY_VERIFY(model.device());
    }

    void ejectsOnlyAnIdleVolume()
    {
        ModelDesk desk;
        std::vector<std::filesystem::path> ejected;
        desk.ejector = [&](const std::filesystem::path &root) { ejected.push_back(root); };
        const auto model = desk.start();
        model->eject();
        model->select(desk.makeDevice("folder", false));
        model->eject();
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        model->select(device);
        model->importURLs({desk.folder / "nothing"}, false, false);
        QVERIFY(model->busy());
        model->eject();
        desk.waitForJobs(*model);
        QVERIFY(ejected.empty());
        QVERIFY(!model->alert());

        desk.found->clear();
        model->eject();
        desk.waitForJobs(*model);
        QCOMPARE(ejected, std::vector {device.root});
        QVERIFY(!model->device());
        QCOMPARE(model->status(), QStringLiteral("Możesz odłączyć iPoda"));
    }

    void ejectsWithoutCallingItALoss()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        const auto model = desk.start();
        MarluneModel *const raw = model.get();
        // The kernel tells of the unmount before the drive has let go.
        desk.ejector = [raw, &desk](const std::filesystem::path &root) {
            desk.found->clear();
            postToUi([raw, root] { raw->volumeUnmounted(root); });
        };
        QSignalSpy statuses(raw, &MarluneModel::statusChanged);
        QStringList seen;
        connect(raw, &MarluneModel::statusChanged, this, [&] { seen.append(raw->status()); });
        model->eject();
        desk.waitForJobs(*model);
        QVERIFY(!seen.contains(QStringLiteral("iPod został odłączony")));
        QCOMPARE(model->status(), QStringLiteral("Możesz odłączyć iPoda"));
        QVERIFY(!model->device());
    }

    void keepsItsStateWhenEjectingFails()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        desk.ejector = [](const std::filesystem::path &) { throw MarluneError(QStringLiteral("zajęty")); };
        const auto model = desk.start();
        const QString status = model->status();
        model->eject();
        QVERIFY(model->busy());
        desk.waitForJobs(*model);
        QCOMPARE(model->alert().value_or(QString()), QStringLiteral("zajęty"));
        QVERIFY(model->device() == device);
        QCOMPARE(model->status(), status);
        QVERIFY(!model->busy());
    }

    void listsBackupsNewestFirst()
    {
        ModelDesk desk;
        desk.folder.write("data/Marlune/Backups/2026-01-02/x", "x");
        desk.folder.write("data/Marlune/Backups/2026-01-10/x", "x");
        desk.folder.write("data/Marlune/Backups/.hidden/x", "x");
        const auto model = desk.start();
        QCOMPARE(model->backups().size(), 2U);
        QCOMPARE(model->backups()[0].filename().string(), std::string("2026-01-10"));
    }

    void outlivesNoJob()
    {
        ModelDesk desk;
        auto model = std::make_unique<MarluneModel>(desk.environment());
        desk.folder.write("Computer/a.mp3", "x");
        model->importURLs({desk.folder / "Computer"}, false, true);
        model.reset(); // results that land now find no owner
        QCoreApplication::processEvents();
    }
};

QTEST_GUILESS_MAIN(DeviceWorkflowTest)
#include "DeviceWorkflowTest.moc"
